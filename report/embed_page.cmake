# Writes the report page as C++ string parts: the page's text cut at each
# <!--velmora:...--> slot, where the report writes the input's name or its
# data. Run as: cmake -DPAGE=report_page.html -DHEADER=report_page.h -P embed_page.cmake
file(READ ${PAGE} page)
string(REGEX REPLACE "<!--velmora:[a-z]+-->" ")velmora\",\n    R\"velmora(" parts "${page}")
file(WRITE ${HEADER}.new
     "#pragma once\n// Generated from report_page.html by embed_page.cmake.\n#include <string_view>\n\n"
     "namespace velmora {\n\ninline constexpr std::string_view kReportPageParts[] = {\n    R\"velmora(${parts})velmora\",\n};\n\n"
     "}  // namespace velmora\n")
file(COPY_FILE ${HEADER}.new ${HEADER} ONLY_IF_DIFFERENT)
file(REMOVE ${HEADER}.new)
