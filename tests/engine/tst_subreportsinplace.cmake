# LibreOffice conversions must not overlap.
set_tests_properties(tst_subreportsinplace PROPERTIES RESOURCE_LOCK libreoffice TIMEOUT 600 LABELS libreoffice)
