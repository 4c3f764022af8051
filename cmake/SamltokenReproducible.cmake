# The same sources give the same library, wherever they are built: what the compiler writes down of
# folders, for debuggers and in messages, is relative to the sources. A debugger that is started in
# their folder finds them. Reports of a build that looks for faults want whole paths instead.
include(CheckCXXCompilerFlag)

add_library(samltoken_reproducible INTERFACE)
if(NOT SAMLTOKEN_INSTRUMENTATION AND NOT MSVC)
  check_cxx_compiler_flag("-ffile-prefix-map=a=b" SAMLTOKEN_HAS_ffile_prefix_map)
  if(SAMLTOKEN_HAS_ffile_prefix_map)
    target_compile_options(samltoken_reproducible INTERFACE
      "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=." "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
  endif()
endif()
