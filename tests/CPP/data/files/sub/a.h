a beside
