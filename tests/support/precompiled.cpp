// Holds nothing: it is compiled so that the test programs find GoogleTest's headers compiled already.
