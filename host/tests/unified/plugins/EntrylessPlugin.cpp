/// A library that is no plug-in.
extern "C" [[gnu::visibility("default")]] int somethingElse() {
    return 1;
}
