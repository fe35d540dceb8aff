# soffice calls that overlap fail or hang, whatever their profiles.
set_tests_properties(tst_xlslibreoffice PROPERTIES RESOURCE_LOCK libreoffice LABELS peers TIMEOUT 600)
