# One interface target carries what every target is compiled with, so that no folder sets flags of its own.
add_library(tandolin_flags INTERFACE)
target_compile_features(tandolin_flags INTERFACE cxx_std_20)
target_compile_options(tandolin_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # This compiler's optimiser sees overlapping copies in its own string library where there are none.
  target_compile_options(tandolin_flags INTERFACE -Wno-restrict)
endif()
if(TANDOLIN_WERROR)
  target_compile_options(tandolin_flags INTERFACE -Werror)
endif()
if(TANDOLIN_SANITIZE)
  target_compile_options(tandolin_flags INTERFACE -fsanitize=${TANDOLIN_SANITIZE} -fno-omit-frame-pointer
                                                  -fno-sanitize-recover=undefined)
  target_link_options(tandolin_flags INTERFACE -fsanitize=${TANDOLIN_SANITIZE})
endif()

# tandolin_library(<folder> SOURCES ... LINKS ...): a static library with the alias tandolin::<folder>.
# Headers are included from src/ ("core/date.h"), so that a line shows which folder it reaches into.
function(tandolin_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(tandolin_${name} STATIC ${ARG_SOURCES})
  add_library(tandolin::${name} ALIAS tandolin_${name})
  target_include_directories(tandolin_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(tandolin_${name} PUBLIC tandolin_flags ${ARG_LINKS})
endfunction()
