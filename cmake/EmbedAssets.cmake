# cmake -DOUTPUT=SOURCE.cpp -DStyle=FILE.css -DScript=FILE.js -P EmbedAssets.cmake
# Writes the assets of the report page, and the hashes under which the page's policy lets them in, as
# a source for frontend/ReportAssets.h.

set(letters ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)

# base64(HEX VARIABLE): 12 bits at a time, two letters; the last group is filled up with zeros.
function(base64 hex variable)
  set(text "")
  string(LENGTH ${hex} length)
  math(EXPR padding "(3 - ${length} / 2 % 3) % 3")
  string(REPEAT "00" ${padding} zeros)
  string(REGEX MATCHALL "..." groups ${hex}${zeros})
  foreach(group IN LISTS groups)
    math(EXPR high "0x${group} >> 6")
    math(EXPR low "0x${group} & 63")
    string(SUBSTRING ${letters} ${high} 1 first)
    string(SUBSTRING ${letters} ${low} 1 second)
    string(APPEND text ${first}${second})
  endforeach()
  string(LENGTH ${text} length)
  math(EXPR length "${length} - ${padding}")
  string(SUBSTRING ${text} 0 ${length} text)
  string(REPEAT "=" ${padding} end)
  set(${variable} ${text}${end} PARENT_SCOPE)
endfunction()

set(source "// Made by EmbedAssets.cmake.\n#include \"frontend/ReportAssets.h\"\n\nnamespace zel {\n")
foreach(asset IN ITEMS Style Script)
  file(READ ${${asset}} text)
  file(SHA256 ${${asset}} hex)
  base64(${hex} hash)
  string(APPEND source "\nconst TReportAsset kReport${asset} = {\n"
         "    \"sha256-${hash}\",\n    R\"asset(${text})asset\"};\n")
endforeach()
file(WRITE ${OUTPUT} "${source}\n}  // namespace zel\n")
