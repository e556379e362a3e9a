# tarn_embed(TARGET NAMESPACE FILE...)
#
# Compiles the text of the files into TARGET, as NAMESPACE::embeddedFiles(); base/embedded_files.h has its type. This file is
# also the script that the build runs to write the source, with OUTPUT, NAMESPACE and FILES (separated by commas).
function(tarn_embed target namespace)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}_files.cpp)
    list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE files)
    list(JOIN files "," argument)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DNAMESPACE=${namespace} -DFILES=${argument}
            -P ${CMAKE_CURRENT_FUNCTION_LIST_FILE}
        DEPENDS ${files} ${CMAKE_CURRENT_FUNCTION_LIST_FILE}
        COMMENT "Embedding the files of ${target}"
        VERBATIM)
    set_source_files_properties(${output} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    target_sources(${target} PRIVATE ${output})
    target_link_libraries(${target} PRIVATE tarn_base)
endfunction()

if(NOT CMAKE_SCRIPT_MODE_FILE)
    return()
endif()

string(REPLACE "," ";" FILES "${FILES}")
set(table "")
foreach(file IN LISTS FILES)
    get_filename_component(name "${file}" NAME)
    file(READ "${file}" text)
    if(text MATCHES "\\)embedded\"")
        message(FATAL_ERROR "${file}: contains )embedded\", which ends a text in the source that it is to be put into")
    endif()
    string(APPEND table "        {\"${name}\", R\"embedded(${text})embedded\"sv},\n")
endforeach()
file(WRITE "${OUTPUT}" "#include \"base/embedded_files.h\"

namespace ${NAMESPACE}
{

const std::vector<tarn::base::EmbeddedFile>& embeddedFiles()
{
    using namespace std::string_view_literals;
    static const std::vector<tarn::base::EmbeddedFile> kFiles = {
${table}    };
    return kFiles;
}

} // namespace ${NAMESPACE}
")
