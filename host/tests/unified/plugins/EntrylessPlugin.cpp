/// A library without the entry point of a plug-in.
extern "C" [[gnu::visibility("default")]] int somethingElse() {
    return 1;
}
