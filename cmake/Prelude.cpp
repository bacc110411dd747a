// Carries the precompiled header of the libraries.
