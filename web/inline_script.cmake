# Puts the module's script into the page where <!--velmora:script--> stands.
# Run as: cmake -DPAGE=page.html -DSCRIPT=velmora_web.js -DOUTPUT=velmora.html -P inline_script.cmake
file(READ ${PAGE} page)
file(READ ${SCRIPT} script)
# A "</script" inside the script would end its element early.
string(FIND "${script}" "</script" closing)
if(NOT closing EQUAL -1)
  message(FATAL_ERROR "the module's script holds </script")
endif()
string(REPLACE "<!--velmora:script-->" "${script}" page "${page}")
file(WRITE ${OUTPUT} "${page}")
