"""Conan 2: conan create packaging/conan, from the folder of the sources."""
from pathlib import Path

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy

SOURCES = ["CMakeLists.txt", "CHANGELOG.md", "cmake/*", "saml/*"]


class SamltokenConan(ConanFile):
    name = "samltoken"
    version = "1.0.0"
    description = "Accepts, checks and exposes SAML 2.0 tokens"
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"

    def export_sources(self):
        root = Path(self.recipe_folder).parent.parent
        for pattern in SOURCES:
            copy(self, pattern, str(root), self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        # Its headers are in ours; nothing of it is linked.
        self.requires("boost/[>=1.74]", transitive_headers=True, options={"header_only": True})
        self.requires("expat/[>=2.4.1]")
        self.requires("openssl/[>=1.1.1]")

    def validate(self):
        check_min_cppstd(self, 17)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["SAMLTOKEN_BUILD_TESTS"] = "OFF"
        toolchain.cache_variables["SAMLTOKEN_BUILD_EXAMPLES"] = "OFF"
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "samltoken")
        self.cpp_info.set_property("cmake_target_name", "samltoken::samltoken")
        self.cpp_info.set_property("pkg_config_name", "samltoken")
        self.cpp_info.includedirs = ["include/samltoken"]
        self.cpp_info.libs = ["samltoken"]
        self.cpp_info.defines = ["BOOST_CHRONO_HEADER_ONLY"]
        self.cpp_info.requires = ["boost::headers", "expat::expat", "openssl::crypto"]
