version
