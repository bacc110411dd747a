# Writes a C++ file that contains the bytes of another file:
# cmake -DINPUT=... -DOUTPUT=... -DFUNCTION=... -DHEADER=... -P
# HEADER declares FUNCTION in namespace lumora_config; the function returns a std::string_view.
file(READ ${INPUT} bytes HEX)
string(LENGTH "${bytes}" digits)
math(EXPR count "${digits} / 2") # explicit because some compilers can't deduce so many elements
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
string(REGEX REPLACE "('[^']+',('[^']+',)?('[^']+',)?('[^']+',)?('[^']+',)?('[^']+',)?('[^']+',)?('[^']+',)?)" "\\1\n" bytes "${bytes}")
file(WRITE ${OUTPUT}
  "#include \"${HEADER}\"\n\n#include <array>\n\n"
  "namespace lumora_config {\n\n"
  "std::string_view ${FUNCTION}() {\n"
  "    static constexpr std::array<char, ${count}> bytes{\n${bytes}};\n"
  "    return {bytes.data(), bytes.size()};\n"
  "}\n\n"
  "} // namespace lumora_config\n")
