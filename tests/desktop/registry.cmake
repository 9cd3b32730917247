# Tests of the registry port.
