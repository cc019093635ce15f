# SPDX-License-Identifier: MIT
# The shaders travel inside the library: ShaderSources.inc is one array of (file name, text) pairs,
# made from the files of shaders/ and from the headers whose lines C++ and shaders share.

set(shader_sources "")
function(add_shader name text)
    string(APPEND shader_sources "    {\"${name}\", R\"glsl(${text})glsl\"},\n")
    set(shader_sources "${shader_sources}" PARENT_SCOPE)
endfunction()

# The lines of a header in render/scene between two others; its comments are the shaders' too.
function(read_shared header first last variable)
    set(path ${PROJECT_SOURCE_DIR}/render/scene/include/render/scene/${header})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
    file(READ ${path} text)
    string(REGEX REPLACE ".*${first}\n(.*)\n${last}.*" "\\1" text "${text}")
    string(REPLACE "///<" "//" text "${text}")
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

read_shared(ShaderConstants.h "namespace ig {" "} // namespace ig" constants)
string(REGEX REPLACE "([A-Z_]+)\\[\\] = {([^}]*)}" "\\1[] = float[](\\2)" constants "${constants}")
string(REGEX REPLACE "(vec[234]) ([A-Z_]+){([^}]*)}" "\\1 \\2 = \\1(\\3)" constants "${constants}")
string(REPLACE "constexpr" "const" constants "${constants}")
add_shader(constants.glsl "${constants}\n")

read_shared(FrameBlock.h "struct FrameBlock {" "};" block)
string(REGEX MATCHALL "[a-z]+4 [a-z_]+" fields "${block}") # light_direction to uLightDirection
foreach(field IN LISTS fields)
    string(REPLACE " " " u_" name "${field}")
    foreach(letter a b c d e f g h i j k l m n o p q r s t u v w x y z)
        string(TOUPPER ${letter} capital)
        string(REPLACE "_${letter}" ${capital} name "${name}")
    endforeach()
    string(REPLACE "${field};" "${name};" block "${block}")
endforeach()
add_shader(frame.glsl "layout(std140) uniform Frame {\n${block}\n};\n")

file(GLOB shader_files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/shaders/*)
foreach(shader_file IN LISTS shader_files)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${shader_file})
    get_filename_component(shader_name ${shader_file} NAME)
    file(READ ${shader_file} shader_text)
    add_shader(${shader_name} "${shader_text}")
endforeach()
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/ShaderSources.inc
    CONTENT "@shader_sources@" @ONLY)
