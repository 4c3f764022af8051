# The warnings that every source of this repository is clean at; linked privately, never exported.
add_library(samltoken_warnings INTERFACE)
if(MSVC)
  # By the letter of the language. An exported class may hold and derive from what the standard
  # library makes: library and caller have the same one (4251, 4275).
  target_compile_options(samltoken_warnings INTERFACE /permissive- /W4 /wd4251 /wd4275)
else()
  target_compile_options(samltoken_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()
if(SAMLTOKEN_WARNINGS_AS_ERRORS)
  target_compile_options(samltoken_warnings INTERFACE $<IF:$<CXX_COMPILER_ID:MSVC>,/WX,-Werror>)
endif()
