# Tests of the locale port: the same ones for every platform, by the locale that its tests use, and
# those of what each platform has of its own.
vesko_test(locale_test SOURCES LocaleTest.cpp LIBS vesko_test_locale)
if(WIN32)
  vesko_test(win_locale_test SOURCES WinLocaleTest.cpp LIBS vesko_windows_locale)
else()
  vesko_test(icu_locale_test SOURCES IcuLocaleTest.cpp LIBS vesko_linux_locale)
endif()
