// What the user's file costs beside what no implementation can do without: parsing and deciphering the same bytes, and
// writing them durably.
#include "MarkdownReporter.h"
#include "SyntheticKeys.h"
#include "featuresets/adapters/config/LocalFileDocument.h"
#include "secure/SecureString.h"

#include <kyr/StringUtils.h>
#include <zel/FileLayer.h>

#include <ConfigMap.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using zel::storage::FileLayer;
using ZelUnified::ConfigMap;
using ZelUnified::LocalFileConfigStore;

constexpr std::size_t keyCount = 5000;
constexpr std::size_t readsInRound = 1000;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("went wrong: ") + what);
    }
}

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

/// AES-256-GCM of the library and nothing else.
class BareCipher {
public:
    explicit BareCipher(const std::string& clear) { encipher(clear); }

    /// Enciphers a text, of any length, anew.
    void encipher(const std::string& clear) {
        int count = 0;
        cipherText.resize(clear.size());
        require(EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nonce.data()) == 1 &&
                    EVP_EncryptUpdate(context.get(), to(cipherText), &count, from(clear),
                                      static_cast<int>(clear.size())) == 1 &&
                    EVP_EncryptFinal_ex(context.get(), to(cipherText), &count) == 1 &&
                    EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, static_cast<int>(tag.size()),
                                        tag.data()) == 1,
                "the bare encryption");
    }

    const std::string& getCipherText() const { return cipherText; }

    void decipher(std::string& clear) {
        int count = 0;
        clear.resize(cipherText.size());
        require(EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nonce.data()) == 1 &&
                    EVP_DecryptUpdate(context.get(), to(clear), &count, from(cipherText),
                                      static_cast<int>(cipherText.size())) == 1 &&
                    EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, static_cast<int>(tag.size()),
                                        tag.data()) == 1 &&
                    EVP_DecryptFinal_ex(context.get(), to(clear), &count) == 1,
                "the bare decryption");
    }

private:
    static unsigned char* to(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }
    static const unsigned char* from(const std::string& text) {
        return reinterpret_cast<const unsigned char*>(text.data());
    }

    CipherContext context{EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free};
    std::array<unsigned char, 32> key{};
    std::array<unsigned char, 12> nonce{};
    std::array<unsigned char, 16> tag{};
    std::string cipherText;
};

/// A user's file of many keys, the same bytes in the clear, and a store on it.
class Subjects {
public:
    Subjects() {
        bench::SyntheticKeys generator(20240229);
        keys = generator.makeKeys(keyCount);
        store = openStore();
        for (const auto& key : keys) {
            values.emplace(key, generator.makeValue());
            store->storeValue(key, values.at(key));
        }
        store->persistValues();
        zel::SecureString content;
        ZelUnified::LocalFileDocument::write(values, content);
        content.withClearText([this](std::string_view clear) { document = clear; });
        cipher = std::make_unique<BareCipher>(document);
        require(openStore()->getKeys().size() == keyCount, "the file");
    }

    static std::shared_ptr<LocalFileConfigStore> openStore() {
        return std::make_shared<LocalFileConfigStore>("LocalFileConfigStore", 20, false);
    }

    LocalFileConfigStore& userStore() { return *store; }
    const std::vector<std::wstring>& allKeys() const { return keys; }
    const ConfigMap& getValues() const { return values; }
    const std::string& text() const { return document; }
    BareCipher& bareCipher() { return *cipher; }
    std::string pathOf(const char* name) const { return (profile.config() / name).string(); }

    /// A change, without which nothing is written.
    void change() { store->storeValue(keys.front(), std::to_wstring(++changes)); }

private:
    testing_host::TemporaryProfile profile;
    std::vector<std::wstring> keys;
    ConfigMap values;
    std::shared_ptr<LocalFileConfigStore> store;
    std::string document;
    std::unique_ptr<BareCipher> cipher;
    unsigned long changes = 0;
};

/// Persists over and over on a thread of its own.
class PersistingThread {
public:
    explicit PersistingThread(Subjects& written)
        : subjects(written), thread([this] {
              while (!stopped) {
                  subjects.change();
                  subjects.userStore().persistValues();
              }
          }) {}
    ~PersistingThread() {
        stopped = true;
        thread.join();
    }
    PersistingThread(const PersistingThread&) = delete;
    PersistingThread& operator=(const PersistingThread&) = delete;

private:
    Subjects& subjects;
    std::atomic<bool> stopped = false;
    std::thread thread;
};

/// The document's text, put together with no more care than its characters need.
std::string serialise(const ConfigMap& values) {
    std::string text = "<Lumora>\n";
    for (const auto& [key, value] : values) {
        text.append(" <userConfig name=\"").append(KyrCoreUtils::toString(key));
        text.append("\" value=\"").append(KyrCoreUtils::toString(value)).append("\"/>\n");
    }
    return text.append("</Lumora>\n");
}

void replaceDurably(const std::string& temporary, const std::string& path, std::string_view bytes) {
    FileLayer& files = FileLayer::platform();
    FileLayer::Handle handle = -1;
    require(files.createFile(temporary, handle) == 0, "the bare file");
    while (!bytes.empty()) {
        std::size_t count = 0;
        require(files.write(handle, bytes, count) == 0, "the bare write");
        bytes.remove_prefix(count);
    }
    require(files.sync(handle) == 0 && files.close(handle) == 0 && files.rename(temporary, path) == 0 &&
                files.syncDirectory(std::filesystem::path(path).parent_path().string()) == 0,
            "the bare replacement");
}

void registerLoad(Subjects& subjects) {
    const std::string name = "load of a file of 5,000 keys";
    benchmark::RegisterBenchmark((name + "/store").c_str(), [](benchmark::State& state) {
        while (state.KeepRunning()) {
            benchmark::DoNotOptimize(Subjects::openStore());
        }
    });
    benchmark::RegisterBenchmark((name + "/bare parse").c_str(), [&](benchmark::State& state) {
        while (state.KeepRunning()) {
            xmlDoc* parsed = xmlParseDoc(reinterpret_cast<const xmlChar*>(subjects.text().c_str()));
            require(parsed != nullptr, "the bare parse");
            xmlFreeDoc(parsed);
        }
    });
    benchmark::RegisterBenchmark((name + "/decryption alone").c_str(), [&](benchmark::State& state) {
        std::string clear;
        while (state.KeepRunning()) {
            subjects.bareCipher().decipher(clear);
        }
        require(clear == subjects.text(), "the bare decryption");
    });
}

void registerPersist(Subjects& subjects) {
    const std::string name = "5 persist of 5000 keys";
    benchmark::RegisterBenchmark((name + "/store").c_str(), [&](benchmark::State& state) {
        while (state.KeepRunning()) {
            subjects.change();
            subjects.userStore().persistValues();
        }
    })->UseRealTime();
    benchmark::RegisterBenchmark((name + "/bare durable file").c_str(), [&](benchmark::State& state) {
        while (state.KeepRunning()) {
            subjects.bareCipher().encipher(serialise(subjects.getValues()));
            replaceDurably(subjects.pathOf("bare.tmp"), subjects.pathOf("bare"), subjects.bareCipher().getCipherText());
        }
        subjects.bareCipher().encipher(subjects.text());
    })->UseRealTime();
}

/// Times the longest of many reads in a row.
void timeLongestRead(benchmark::State& state, Subjects& subjects) {
    std::wstring value;
    std::size_t position = 0;
    while (state.KeepRunning()) {
        std::chrono::steady_clock::duration longest{};
        for (std::size_t i = 0; i < readsInRound; ++i) {
            position = (position + 1999) % keyCount; // an order that no cache of the processor foresees
            const auto begin = std::chrono::steady_clock::now();
            benchmark::DoNotOptimize(subjects.userStore().getValue(subjects.allKeys()[position], value));
            longest = std::max(longest, std::chrono::steady_clock::now() - begin);
        }
        state.SetIterationTime(std::chrono::duration<double>(longest).count());
    }
}

void timeRead(benchmark::State& state, Subjects& subjects) {
    std::wstring value;
    std::size_t position = 0;
    while (state.KeepRunning()) {
        position = (position + 1999) % keyCount;
        benchmark::DoNotOptimize(subjects.userStore().getValue(subjects.allKeys()[position], value));
    }
}

void registerReads(Subjects& subjects) {
    benchmark::RegisterBenchmark("read of a key/store", [&](benchmark::State& state) {
        timeRead(state, subjects);
    })->UseRealTime();
    benchmark::RegisterBenchmark("read of a key/store, while it persists", [&](benchmark::State& state) {
        const PersistingThread persisting(subjects);
        timeRead(state, subjects);
    })->UseRealTime();
    benchmark::RegisterBenchmark("longest of 1,000 reads/store", [&](benchmark::State& state) {
        timeLongestRead(state, subjects);
    })->UseManualTime();
    benchmark::RegisterBenchmark("longest of 1,000 reads/store, while it persists", [&](benchmark::State& state) {
        const PersistingThread persisting(subjects);
        timeLongestRead(state, subjects);
    })->UseManualTime();
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    Subjects subjects;
    registerLoad(subjects);
    registerPersist(subjects);
    registerReads(subjects);
    bench::MarkdownReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return EXIT_SUCCESS;
}
