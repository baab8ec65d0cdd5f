# Real plug-ins for the shared library manager tests. Both land in the same
# directory, which the tests get as KESTODM_TEST_PLUGIN_DIR.
add_library(KestoTestPlugin SHARED ${CMAKE_CURRENT_SOURCE_DIR}/platform/fixture/TestPlugin.cpp)
add_library(KestoTestPluginSecond SHARED ${CMAKE_CURRENT_SOURCE_DIR}/platform/fixture/TestPluginSecond.cpp)
kestodm_set_warnings(KestoTestPlugin)
kestodm_set_warnings(KestoTestPluginSecond)
add_dependencies(${target} KestoTestPlugin KestoTestPluginSecond)
target_compile_definitions(${target} PRIVATE KESTODM_TEST_PLUGIN_DIR="$<TARGET_FILE_DIR:KestoTestPlugin>")
