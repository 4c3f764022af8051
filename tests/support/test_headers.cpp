// Only so that there is something to precompile headers for; see ../CMakeLists.txt.
