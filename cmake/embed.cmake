# Writes OUTPUT, a C++ source that defines the bytes of INPUT as the array ARRAY and their number
# as LENGTH, both declared in HEADER. Run as a script: cmake -DINPUT=... -P embed.cmake
file(READ "${INPUT}" hex HEX)
string(LENGTH "${hex}" hex_digits)
math(EXPR nb_bytes "${hex_digits} / 2")
string(REGEX REPLACE "(................................)" "\\1\n    " hex "${hex}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1, " bytes "${hex}")
string(REPLACE " \n" "\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "#include \"${HEADER}\"\n\n"
                       "const unsigned char ${ARRAY}[] = {\n    ${bytes}};\n\n"
                       "const unsigned ${LENGTH} = ${nb_bytes};\n")
