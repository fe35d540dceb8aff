set_tests_properties(tst_frmconnect PROPERTIES TIMEOUT 180 LABELS "ui;peers")
