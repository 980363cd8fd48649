# SPDX-License-Identifier: MIT
# Writes the source that holds the page: cmake -DFOLDER=… -DOUTPUT=… -P embed.cmake
file(READ ${FOLDER}/page.html markup)
string(REGEX REPLACE "^<!--[^\n]*\n" "" markup "${markup}") # it would speak of the data in the page
file(READ ${FOLDER}/page.css style)
set(script "")
foreach(name IN ITEMS decimal product list tree documents panel main)
    file(READ ${FOLDER}/${name}.js text)
    string(APPEND script "${text}")
endforeach()

set(source "#include \"tool/page/page.h\"\n\nnamespace tool::page {\n\n")
foreach(part IN ITEMS markup style script)
    string(APPEND source "const std::string_view ${part} = R\"~part~(${${part}})~part~\";\n")
endforeach()
file(WRITE ${OUTPUT} "${source}\n}  // namespace tool::page\n")
