# Writes a C++ source with the contents of files as constants.
#   cmake -DFOLDER=cli/report -DTARGET=Assets.cpp -P Embed.cmake

set(names baseStyle pageStyle pageScript tableStyle)
set(files base.css page.css page.js table.css)

set(source "#include \"report/Assets.h\"\n\nnamespace ReportAssets {\n\n")
foreach(name file IN ZIP_LISTS names files)
    file(READ "${FOLDER}/${file}" content)
    string(APPEND source "const std::string_view ${name} = R\"asset(${content})asset\";\n\n")
endforeach()
string(APPEND source "} // namespace ReportAssets\n")
file(WRITE "${TARGET}" "${source}")
