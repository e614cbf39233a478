# Makes the user guide, written in Markdown, a page for browsers: SOURCE and TEMPLATE into OUT/user-guide.html, headed by
# the drawing ICON, with the pictures that it shows beside it. CMARK is the program that turns Markdown into HTML. Run by
# cmake -P while building.
get_filename_component(folder ${SOURCE} DIRECTORY)
# Its Markdown is the project's own, so HTML in it (pictures for dark and light pages) is let through.
execute_process(COMMAND ${CMARK} --unsafe --extension table --to html ${SOURCE}
  OUTPUT_VARIABLE BODY COMMAND_ERROR_IS_FATAL ANY)

# Semicolons and brackets mean something to lists; until the end other characters stand in for them.
string(ASCII 1 semicolon)
string(ASCII 2 opening)
string(ASCII 3 closing)
string(REPLACE ";" "${semicolon}" BODY "${BODY}")
string(REPLACE "[" "${opening}" BODY "${BODY}")
string(REPLACE "]" "${closing}" BODY "${BODY}")

# Headings get the names by which Markdown viewers know them, and the second level makes the table of contents.
set(TITLE "")
set(CONTENTS "")
string(REGEX MATCHALL "<h[1-6]>[^\n]*</h[1-6]>" headings "${BODY}")
foreach(heading IN LISTS headings)
  string(REGEX REPLACE "^<h([1-6])>(.*)</h[1-6]>$" "\\1" level "${heading}")
  string(REGEX REPLACE "^<h([1-6])>(.*)</h[1-6]>$" "\\2" text "${heading}")
  string(REGEX REPLACE "<[^>]*>" "" words "${text}")
  string(TOLOWER "${words}" name)
  string(REGEX REPLACE "&[a-z]+${semicolon}" "" name "${name}")
  string(REGEX REPLACE "[^a-z0-9_ -]" "" name "${name}")
  string(REPLACE " " "-" name "${name}")
  string(REPLACE "${heading}" "<h${level} id=\"${name}\">${text}</h${level}>" BODY "${BODY}")
  if(level EQUAL 1 AND TITLE STREQUAL "")
    set(TITLE "${words}")
  elseif(level EQUAL 2)
    string(APPEND CONTENTS "<li><a href=\"#${name}\">${words}</a></li>\n")
  endif()
endforeach()

# The README is not installed: what points into it stays as words.
set(link "<a href=\"(\\.\\./)?[A-Za-z_/-]+\\.md(#[^\"]*)?\">([^<]*(<code>[^<]*</code>)?[^<]*)</a>")
string(REGEX REPLACE "${link}" "\\3" BODY "${BODY}")

file(REMOVE_RECURSE ${OUT})
string(REGEX MATCHALL "(src|srcset)=\"[^\"]+\"" pictures "${BODY}")
foreach(picture IN LISTS pictures)
  string(REGEX REPLACE "^[a-z]+=\"([^\"]+)\"$" "\\1" path "${picture}")
  if(NOT path MATCHES "^screenshots/[^/]+$" OR NOT EXISTS ${folder}/${path})
    message(FATAL_ERROR "${SOURCE}: the picture ${path} does not lie in screenshots/")
  endif()
  file(COPY ${folder}/${path} DESTINATION ${OUT}/screenshots)
endforeach()

foreach(variable BODY CONTENTS TITLE)
  string(REPLACE "${semicolon}" ";" ${variable} "${${variable}}")
  string(REPLACE "${opening}" "[" ${variable} "${${variable}}")
  string(REPLACE "${closing}" "]" ${variable} "${${variable}}")
endforeach()
file(READ ${ICON} ICON)
configure_file(${TEMPLATE} ${OUT}/user-guide.html @ONLY)
# A file that did not change keeps its time; the build wants to see that it was made.
file(TOUCH ${OUT}/user-guide.html)
