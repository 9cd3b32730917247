# Tests of the locale port.
