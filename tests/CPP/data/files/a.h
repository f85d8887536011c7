in a
