// Names are copied into an arena, and a folder once for all the files that follow each other in it.
#include "engine/duplicates/fileAttrbItem.h"

#include <new>

namespace orrinvale {

void fileAttrbItem::setAttributes(const FileAttributes& attributes) {
    fileSize = attributes.size;
    modified = attributes.modified;
    changed = attributes.changed;
    born = attributes.born;
    device = attributes.device;
    inode = attributes.inode;
    links = attributes.links;
    type = attributes.type;
}

fileAttrbItem& FileArray::add(std::string_view filePathName, const FileAttributes& attributes) {
    if (!m_own) {
        m_own = std::make_shared<Arena>();
        m_storage.push_back(m_own);
    }
    auto [folder, name] = splitPath(filePathName);
    if (folder.empty()) folder = ".";
    if (m_lastFolder == nullptr || folder != m_lastFolder->name) {
        auto* const node = new (m_own->allocate<FolderNode>()) FolderNode;
        node->name = m_own->copy(folder);
        m_lastFolder = node;
    }
    auto* const item = new (m_own->allocate<fileAttrbItem>()) fileAttrbItem;
    item->setAttributes(attributes);
    item->folder = m_lastFolder;
    item->name = m_own->copy(name);
    m_items.push_back(item);
    return *item;
}

void FileArray::adopt(FileList items, std::vector<std::shared_ptr<const void>> storage) {
    if (m_items.empty()) m_items = std::move(items);
    else m_items.insert(m_items.end(), items.begin(), items.end());
    m_storage.insert(m_storage.end(), storage.begin(), storage.end());
}

}  // namespace orrinvale
