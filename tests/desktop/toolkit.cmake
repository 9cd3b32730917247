# Tests of the toolkit port, by events as the window system sends them.
find_package(Qt6 6.4 REQUIRED COMPONENTS Test Widgets)

vesko_test(toolkit_test SOURCES QtToolkitTest.cpp QtListViewTest.cpp
           LIBS vesko_linux_toolkit vesko_linux_locale Qt6::Test Qt6::Widgets)
