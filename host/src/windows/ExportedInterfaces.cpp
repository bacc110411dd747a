// The compiler writes the tables of a class without functions of its own only into sources that create an object of it,
// although its header tells other libraries to import them from here.
#include <unified/IDataPersistor.h>

namespace {

[[maybe_unused]] const ZelUnified::IDataPersistor dataPersistor;

} // namespace
