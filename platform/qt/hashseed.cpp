// Qt hashes the same text to the same number in each process: without a seed.
#include <QHashFunctions>

namespace {

// With a seed, the toolkit hashes by instructions that leave the upper halves of the processor's registers in
// use (seen with its version 6.4 on processors with VAES). From then on each sum in floating point waits
// for what stands there: mathematics, physics and painting took ten times as long in every thread that had
// once looked up a text. Before main, as the first look-up may come with the application. What is hashed here
// comes from the machine's own files and menus, and nobody gains by choosing it. Tables also keep their order
// then: the PDF writer puts its fonts in the order of one, and the same report is the same bytes.
[[maybe_unused]] const bool g_bUnseeded = [] {
    QHashSeed::setDeterministicGlobalSeed();
    return true;
}();

}  // namespace
