# Tests of the sound port.
