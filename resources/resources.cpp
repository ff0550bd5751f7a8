// The library holds only embedded files; a static library needs one object of its own.
