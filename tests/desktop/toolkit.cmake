# Tests of the toolkit port.
