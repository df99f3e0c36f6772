// Empty: its target compiles the headers that the tests share.
