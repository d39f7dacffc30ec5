// Holds nothing: the target that it stands in is where the standard library's headers are
// precompiled.
