// Carries what all tests include.
