/* An expat before its guard against amplification, as far as CMake reads it. */
#define XML_MAJOR_VERSION 2
#define XML_MINOR_VERSION 2
#define XML_MICRO_VERSION 5
