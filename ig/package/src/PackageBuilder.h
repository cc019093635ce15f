// SPDX-License-Identifier: MIT
#pragma once

#include "ig/package/Package.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>
#include <yaml-cpp/anchor.h>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/mark.h>

namespace ig {

/// Builds a package from the events of one YAML document. Used within one reading of one file. What
/// cannot be a package throws `YAML::ParserException` at the place in the text; `mjl` catches it.
class PackageBuilder : public YAML::EventHandler {
public:
    explicit PackageBuilder(const jString& path);
    /// The finished package, to be taken once, after the last event.
    Package take();

    void OnDocumentStart(const YAML::Mark& mark) override;
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override;
    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override;
    void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                  const std::string& value) override;
    void OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value style) override;
    void OnSequenceEnd() override { closeLevel(); }
    void OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value style) override;
    void OnMapEnd() override { closeLevel(); }

private:
    /// A list or package whose end has not come yet.
    struct Level {
        Item item;
        YAML::anchor_t anchor = 0;
        YAML::Mark mark;
        long first_item = 0; ///< items in the tree before this one
        bool expects_key = false;
        std::unordered_set<std::string> keys; ///< of a package: those it has
        jString key;                          ///< of a package: the one whose value comes next
        int key_line = 0;
    };
    /// What an anchor stands for, with its size and depth so that an alias can be refused unseen.
    struct Anchored {
        Item item;
        long items = 0;
        int depth = 0;
    };

    bool takesKey() const { return !m_levels.empty() && m_levels.back().expects_key; }
    void setKey(const YAML::Mark& mark, const std::string& key);
    Item makeItem(const YAML::Mark& mark) const;
    void openLevel(const YAML::Mark& mark, YAML::anchor_t anchor, bool map);
    void closeLevel();
    void place(Item item);
    void remember(YAML::anchor_t anchor, const YAML::Mark& mark, const Item& item, long items);
    void countItems(const YAML::Mark& mark, long items);
    void checkDepth(const YAML::Mark& mark, int depth) const;
    static void rename(Item& item, const jString& key, int line);

    std::shared_ptr<const jString> m_path;
    std::vector<Level> m_levels;
    std::unordered_map<YAML::anchor_t, Anchored> m_anchors;
    Item m_top;
    long m_items = 0;
    int m_documents = 0;
};

/// Lists and packages inside one another, the item itself included; 0 for a value.
int depthOf(const Item& item);

} // namespace ig
