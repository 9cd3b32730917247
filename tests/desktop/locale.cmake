# Tests of the locale port: the same ones for every platform, by the locale that its tests use.
vesko_test(locale_test SOURCES LocaleTest.cpp LIBS vesko_test_locale)
vesko_test(icu_locale_test SOURCES IcuLocaleTest.cpp LIBS vesko_linux_locale)
