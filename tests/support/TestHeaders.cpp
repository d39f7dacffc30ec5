// Holds nothing: the target that it stands in is where the test library's headers are precompiled.
