# Script mode (cmake -P): the page's files built into the executable.
# -DWEB_DIR=web/ -DAPP_JS=build/web/app.js -DOUT=build/embedded_web.cpp
include(${CMAKE_CURRENT_LIST_DIR}/embed.cmake)
velm_embed(${OUT} "${WEB_DIR}/index.html;${WEB_DIR}/style.css;${APP_JS}" embedded_web_file)
