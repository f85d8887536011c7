# Writes OUT, a C++ source that holds page.html with its style and its script in their
# places. The page's Content-Security-Policy names both by their hashes; nothing else runs.
cmake_minimum_required(VERSION 3.24)

# The SHA-256 of a text, in base64 as the policy wants it (CMake only writes hex): each
# three hex digits give two characters, and 64 digits leave one character to fill up.
function(base64_hash text result)
  string(SHA256 digits "${text}")
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(digits "${digits}00")
  set(hash "")
  foreach(start RANGE 0 63 3)
    string(SUBSTRING "${digits}" ${start} 3 group)
    math(EXPR high "0x${group} >> 6")
    math(EXPR low "0x${group} & 63")
    string(SUBSTRING "${alphabet}" ${high} 1 high)
    string(SUBSTRING "${alphabet}" ${low} 1 low)
    string(APPEND hash ${high}${low})
  endforeach()
  string(SUBSTRING "${hash}" 0 43 hash)
  set(${result} "${hash}=" PARENT_SCOPE)
endfunction()

foreach(part html css js)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/page.${part} ${part})
endforeach()
base64_hash("${css}" css_hash)
base64_hash("${js}" js_hash)
string(REPLACE "{{STYLE_HASH}}" "${css_hash}" html "${html}")
string(REPLACE "{{SCRIPT_HASH}}" "${js_hash}" html "${html}")
string(REPLACE "{{STYLE}}" "${css}" html "${html}")
string(REPLACE "{{SCRIPT}}" "${js}" html "${html}")
string(REPLACE "{{MARK}}" ")page\";\nextern const char tm_PAGE_HEAD[] = R\"page(" html "${html}")
string(REPLACE "{{DATA}}" ")page\";\nextern const char tm_PAGE_TAIL[] = R\"page(" html "${html}")
file(WRITE ${OUT} "#include \"thumbmake/page/tm_PageParts.h\"\n
extern const char tm_PAGE_MARK[] = R\"page(${html})page\";\n")
