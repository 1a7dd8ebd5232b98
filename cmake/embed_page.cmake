# Writes the page of ltr27rec's reports as C++: cmake -D OUTPUT=... -D FOLDER=recorder/page -D UPLOT=third_party/uplot -P
file(READ ${FOLDER}/page.html page)
function(put place)
  set(text "")
  foreach(file ${ARGN})
    file(READ ${file} one)
    string(APPEND text "${one}")
  endforeach()
  string(REPLACE "{{${place}}}" "${text}" page "${page}")
  set(page "${page}" PARENT_SCOPE)
endfunction()
put(licence ${UPLOT}/LICENSE)
put(style ${UPLOT}/uPlot.min.css ${FOLDER}/page.css)
put(uplot ${UPLOT}/uPlot.iife.min.js)
put(script ${FOLDER}/texts.js ${FOLDER}/data.js ${FOLDER}/charts.js ${FOLDER}/page.js)
# Compilers needn't take literals of more than 64 KiB, and ours do.
file(WRITE ${OUTPUT} "#pragma once\n#include <string_view>\n\
#pragma GCC diagnostic push\n#pragma GCC diagnostic ignored \"-Woverlength-strings\"\ninline constexpr std::string_view PageTemplate = R\"page(${page})page\";\n#pragma GCC diagnostic pop\n")
