# Builds for finding faults rather than for shipping. Sanitizers and coverage must see the whole
# program, so this is the one place where options are set for every target at once.
set(SAMLTOKEN_INSTRUMENTATION "" CACHE STRING
    "Empty, or one of: address+undefined, thread, coverage, fuzzer")
set_property(CACHE SAMLTOKEN_INSTRUMENTATION PROPERTY STRINGS
             "" address+undefined thread coverage fuzzer)

if(SAMLTOKEN_INSTRUMENTATION STREQUAL "address+undefined")
  set(samltoken_instrumentation_options
      -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(SAMLTOKEN_INSTRUMENTATION STREQUAL "fuzzer")
  set(samltoken_instrumentation_options
      -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
elseif(SAMLTOKEN_INSTRUMENTATION STREQUAL "thread")
  set(samltoken_instrumentation_options -fsanitize=thread -fno-omit-frame-pointer)
elseif(SAMLTOKEN_INSTRUMENTATION STREQUAL "coverage")
  set(samltoken_instrumentation_options --coverage -fprofile-abs-path)
elseif(SAMLTOKEN_INSTRUMENTATION)
  message(FATAL_ERROR "Unknown SAMLTOKEN_INSTRUMENTATION '${SAMLTOKEN_INSTRUMENTATION}'")
endif()

if(samltoken_instrumentation_options)
  add_compile_options(${samltoken_instrumentation_options})
  add_link_options(${samltoken_instrumentation_options})
endif()
