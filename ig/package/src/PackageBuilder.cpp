// SPDX-License-Identifier: MIT
#include "PackageBuilder.h"

#include "ig/package/mjl.h"

#include <algorithm>
#include <utility>
#include <yaml-cpp/exceptions.h>

namespace ig {

namespace {
[[noreturn]] void fail(const YAML::Mark& mark, const std::string& what) {
    throw YAML::ParserException(mark, what);
}
} // namespace

int depthOf(const Item& item) {
    int below = 0;
    for (int i = 0; i < item.getCount(); i++)
        below = std::max(below, depthOf(item.getElement(i)));
    if (const Package* package = item.getPackage())
        for (int i = 0; i < package->getItemCount(); i++)
            below = std::max(below, depthOf(package->getItemAt(i)));
    return item.getKind() == Item::Kind::value ? 0 : below + 1;
}

PackageBuilder::PackageBuilder(const jString& path)
    : m_path(std::make_shared<const jString>(path)) {
    m_top.m_path = m_path;
    m_top.becomePackage();
}

Package PackageBuilder::take() { return std::move(*m_top.m_package); }

void PackageBuilder::OnDocumentStart(const YAML::Mark& mark) {
    if (++m_documents > 1) fail(mark, "a second document in one file");
}

void PackageBuilder::OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) {
    if (takesKey()) fail(mark, "a key without text (put it in quotes if it is meant)");
    if (m_levels.empty()) return; // a document without content: an empty package
    OnScalar(mark, {}, anchor, {});
}

void PackageBuilder::OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) {
    const auto found = m_anchors.find(anchor);
    if (found == m_anchors.end()) fail(mark, "an alias inside what it stands for");
    const Anchored& anchored = found->second;
    if (takesKey()) {
        if (anchored.depth > 0) fail(mark, "a key must be plain text");
        setKey(mark, std::string(anchored.item.m_text.view()));
        return;
    }
    checkDepth(mark, static_cast<int>(m_levels.size()) + anchored.depth);
    countItems(mark, anchored.items);
    place(anchored.item);
}

void PackageBuilder::OnScalar(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                              const std::string& value) {
    if (m_levels.empty()) fail(mark, "the top level must be a map");
    Item item = makeItem(mark);
    item.becomeValue(value);
    if (takesKey()) {
        remember(anchor, mark, item, 1);
        setKey(mark, value);
        return;
    }
    countItems(mark, 1);
    remember(anchor, mark, item, 1);
    place(std::move(item));
}

void PackageBuilder::OnSequenceStart(const YAML::Mark& mark, const std::string&,
                                     YAML::anchor_t anchor, YAML::EmitterStyle::value) {
    if (m_levels.empty()) fail(mark, "the top level must be a map");
    openLevel(mark, anchor, false);
}

void PackageBuilder::OnMapStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                                YAML::EmitterStyle::value) {
    openLevel(mark, anchor, true);
}

void PackageBuilder::setKey(const YAML::Mark& mark, const std::string& key) {
    Level& level = m_levels.back();
    if (!level.keys.insert(key).second) fail(mark, "the key \"" + key + "\" stands twice");
    level.key = key;
    level.key_line = mark.line + 1;
    level.expects_key = false;
}

Item PackageBuilder::makeItem(const YAML::Mark& mark) const {
    Item item;
    item.m_path = m_path;
    item.m_line = mark.line + 1;
    return item;
}

void PackageBuilder::openLevel(const YAML::Mark& mark, YAML::anchor_t anchor, bool map) {
    if (takesKey()) fail(mark, "a key must be plain text (is a bracket before it left open?)");
    checkDepth(mark, static_cast<int>(m_levels.size()) + 1);
    Level level;
    level.first_item = m_items;
    countItems(mark, 1);
    level.item = makeItem(mark);
    if (map)
        level.item.becomePackage();
    else
        level.item.becomeList();
    level.anchor = anchor;
    level.mark = mark;
    level.expects_key = map;
    m_levels.push_back(std::move(level));
}

void PackageBuilder::closeLevel() {
    Level level = std::move(m_levels.back());
    m_levels.pop_back();
    remember(level.anchor, level.mark, level.item, m_items - level.first_item);
    place(std::move(level.item));
}

// Puts a finished item where it belongs: into the open list or package, or at the top.
void PackageBuilder::place(Item item) {
    if (m_levels.empty()) {
        m_top = std::move(item);
        return;
    }
    Level& level = m_levels.back();
    if (level.item.m_kind == Item::Kind::list) {
        level.item.m_elements.append(std::move(item));
        return;
    }
    rename(item, level.key, level.key_line);
    level.item.m_package->m_items.append(std::move(item));
    level.expects_key = true;
}

void PackageBuilder::remember(YAML::anchor_t anchor, const YAML::Mark& mark, const Item& item,
                              long items) {
    if (!anchor) return;
    countItems(mark, items); // the copy takes memory as well
    m_anchors[anchor] = {item, items, depthOf(item)};
}

void PackageBuilder::countItems(const YAML::Mark& mark, long items) {
    m_items += items;
    if (m_items > mjl::MAX_ITEMS)
        fail(mark, "more than " + std::to_string(mjl::MAX_ITEMS) + " items");
}

void PackageBuilder::checkDepth(const YAML::Mark& mark, int depth) const {
    if (depth > mjl::MAX_DEPTH)
        fail(mark, "nested deeper than " + std::to_string(mjl::MAX_DEPTH) + " levels");
}

void PackageBuilder::rename(Item& item, const jString& key, int line) {
    item.m_name = key;
    item.m_line = line;
    if (!item.m_package) return;
    item.m_package->m_name = key;
    item.m_package->m_line = line;
}

} // namespace ig
