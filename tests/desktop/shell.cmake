# Tests of the shell port.
