# Tests of the sound port, against a sound server of their own.
vesko_test(sound_test SOURCES SoundTest.cpp LIBS vesko_linux_sound Qt6::Core)
target_compile_definitions(sound_test PRIVATE
                           VESKO_SAMPLE="${PROJECT_SOURCE_DIR}/resources/Email1.wav")
