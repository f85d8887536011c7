#include "osl/lib/osl_MipMap.h"
#include "osl/lib/osl_Texture.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace
{
constexpr size_t MOST_FILES = 1000;

struct Entry {
    std::once_flag once; // the file is read outside of the cache's lock
    std::shared_ptr<const osl_Texture> texture;
    std::string error;
    size_t bytes = 0; // this and the next under the lock
    uint64_t lastUse = 0;
};

void load(Entry &entry, const std::string &path)
{
    osl_Picture picture;
    std::string error;
    if (!osl_readPicture(path, picture, error)) {
        entry.error = '"' + path + "\": " + error;
        return;
    }
    entry.texture = std::make_shared<osl_Texture>(std::move(picture));
}
} // namespace

struct osl_TextureCache::Data {
    using Entries = std::map<std::string, std::shared_ptr<Entry>>;

    std::shared_ptr<Entry> entryFor(const std::string &path)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        std::shared_ptr<Entry> &entry = entries[path];
        if (entry == nullptr)
            entry = std::make_shared<Entry>();
        entry->lastUse = ++uses;
        return entry;
    }

    size_t total() const
    {
        size_t sum = 0;
        for (const auto &e : entries)
            sum += e.second->bytes;
        return sum;
    }

    // Lets files go until the bounds hold, the least recently used first, never the last one.
    void shrink()
    {
        while (entries.size() > 1 && (entries.size() > MOST_FILES || total() > budget)) {
            const auto oldest =
                std::min_element(entries.begin(), entries.end(), [](const auto &a, const auto &b) {
                    return a.second->lastUse < b.second->lastUse;
                });
            entries.erase(oldest);
        }
    }

    std::mutex mutex;
    Entries entries;
    uint64_t uses = 0;
    size_t budget = 0;
};

osl_TextureCache::osl_TextureCache(size_t bytes) : myData(new Data)
{
    myData->budget = bytes;
}

osl_TextureCache::~osl_TextureCache() = default;

std::shared_ptr<const osl_Texture> osl_TextureCache::find(const std::string &path,
                                                          std::string &error)
{
    const std::shared_ptr<Entry> entry = myData->entryFor(path);
    bool isNew = false;
    std::call_once(entry->once, [&] {
        load(*entry, path);
        isNew = true;
    });
    if (isNew) {
        const std::lock_guard<std::mutex> lock(myData->mutex);
        entry->bytes = entry->texture != nullptr ? entry->texture->bytes() : 0;
        myData->shrink();
    }
    error = entry->error;
    return entry->texture;
}
