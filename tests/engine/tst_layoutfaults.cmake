# LibreOffice conversions must not overlap.
set_tests_properties(tst_layoutfaults PROPERTIES RESOURCE_LOCK libreoffice LABELS libreoffice TIMEOUT 600)
