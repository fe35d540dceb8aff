set_tests_properties(tst_viewerprint PROPERTIES TIMEOUT 180 LABELS cups)
