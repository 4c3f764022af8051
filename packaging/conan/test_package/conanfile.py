"""Builds the example against the package, and sees that it asks for its arguments."""
from pathlib import Path

from conan import ConanFile
from conan.errors import ConanException
from conan.tools.build import can_run
from conan.tools.cmake import CMake, cmake_layout


class SamltokenTestConan(ConanFile):
    settings = "os", "arch", "compiler", "build_type"
    generators = "CMakeToolchain", "CMakeDeps"

    def requirements(self):
        self.requires(self.tested_reference_str)

    def layout(self):
        cmake_layout(self)

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def test(self):
        if not can_run(self):
            return
        program = Path(self.cpp.build.bindir) / "who_is_calling"
        status = self.run(str(program), env="conanrun", ignore_errors=True)
        if status != 2:
            raise ConanException(f"who_is_calling without arguments ended with {status}")
