# The pages are staged beside the programs by the dist target.
add_dependencies(tst_helpfolder qorlomanagerd qorlo_dist)
target_compile_definitions(tst_helpfolder PRIVATE QORLO_DAEMON="$<TARGET_FILE:qorlomanagerd>")
set_tests_properties(tst_helpfolder PROPERTIES TIMEOUT 120 LABELS "app")
