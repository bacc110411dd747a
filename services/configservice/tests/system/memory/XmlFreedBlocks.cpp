#include "XmlFreedBlocks.h"

#include <libxml/xmlmemory.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

namespace memory_test {

namespace {

// Not members, because the library takes plain functions.
struct Watch {
    std::string text;
    std::size_t found = 0;
    std::size_t all = 0;
};

Watch* watch = nullptr;

/// Precedes each block.
struct alignas(std::max_align_t) Head {
    std::size_t size;
};

Head* headOf(void* block) {
    return static_cast<Head*>(block) - 1;
}

void look(void* block) {
    if (watch == nullptr) {
        return;
    }
    ++watch->all;
    const std::string_view bytes(static_cast<const char*>(block), headOf(block)->size);
    if (bytes.find(watch->text) != std::string_view::npos) {
        ++watch->found;
    }
}

void* allocate(std::size_t size) {
    void* const memory = std::calloc(1, sizeof(Head) + size); // zeroed, so that it contains no bytes of earlier blocks
    if (memory == nullptr) {
        return nullptr;
    }
    return new (memory) Head{size} + 1;
}

void release(void* block) {
    if (block != nullptr) {
        look(block);
        std::free(headOf(block));
    }
}

/// Always moves, as any reallocation may.
void* grow(void* block, std::size_t size) {
    void* const larger = allocate(size);
    if (block != nullptr && larger != nullptr) {
        std::memcpy(larger, block, std::min(size, headOf(block)->size));
        release(block);
    }
    return larger;
}

char* copy(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    void* const block = allocate(size);
    return block == nullptr ? nullptr : static_cast<char*>(std::memcpy(block, text, size));
}

[[maybe_unused]] const bool installed = xmlMemSetup(&release, &allocate, &grow, &copy) == 0;

} // namespace

XmlFreedBlocks::XmlFreedBlocks(const std::string& text) {
    watch = new Watch{text};
}

XmlFreedBlocks::~XmlFreedBlocks() {
    delete watch;
    watch = nullptr;
}

std::size_t XmlFreedBlocks::count() const {
    return watch->found;
}

std::size_t XmlFreedBlocks::countAll() const {
    return watch->all;
}

} // namespace memory_test
