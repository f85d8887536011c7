on the path
