// The order of groups and leaves is decided in visitBundles() and visitFiles().
#include "engine/duplicates/DuplicateFilesOpt.h"

#include <limits>

#include "engine/base/Log.h"
#include "engine/duplicates/LinkPlaces.h"
#include "engine/duplicates/folders/FolderRows.h"

namespace orrinvale {
namespace {

using Visit = std::function<void(const DuplicateGroup&)>;

void addFileSize(std::uint64_t& sum, std::uint64_t size) {
    sum += std::min(size, std::numeric_limits<std::uint64_t>::max() - sum);
}

// The last member opened the group and gives it its name.
void visitBundles(const std::vector<AppGroup>& groups, const Visit& visit) {
    for (const AppGroup& members : groups) {
        DuplicateGroup group;
        group.bundle = true;
        group.name = members.back()->DirectoryName;
        group.extension = "APP";
        for (const auto& member : members) {
            addFileSize(group.size, member->DirectorySize);
            group.bundles.push_back(member.get());
        }
        visit(group);
    }
}

// Two groups may have one hash by chance, and stand next to each other.
bool areOneGroup(const fileAttrbItem& a, const fileAttrbItem& b) {
    return a.md5 == b.md5 && a.fileSize == b.fileSize && a.md5_1k == b.md5_1k;
}

// The members of a group stand next to each other and share their hashes. The first of them becomes
// the last leaf.
void visitFiles(const FileList& files, const Visit& visit) {
    DuplicateGroup group;
    for (std::size_t from = 0; from < files.size();) {
        std::size_t to = from + 1;
        while (to < files.size() && areOneGroup(*files[to], *files[from])) ++to;
        group.name = files[from]->fileName();
        group.extension = pathExtension(group.name);
        group.size = 0;
        group.files.assign(files.begin() + static_cast<std::ptrdiff_t>(from) + 1,
                           files.begin() + static_cast<std::ptrdiff_t>(to));
        group.files.push_back(files[from]);
        for (const fileAttrbItem* file : group.files) addFileSize(group.size, file->fileSize);
        visit(group);
        from = to;
    }
}

void setPlace(SimpleNodeData& leaf, const LinkPlaces::Place* place) {
    if (place == nullptr) return;
    if (place->isBehindLink) leaf.setLink(place->target, place->outside);
    else leaf.setPlace(place->target);
}

void addLeaves(SimpleTreeNode& node, const DuplicateGroup& group, const duplicateFind& search,
               const FolderRows& folders) {
    const LinkPlaces* const places = search.linkPlaces();
    bool isProtected = true;
    auto add = [&](const std::string& name, std::uint64_t size, IconRequest icon,
                   std::optional<Date> date, const EntryIdentity& identity) {
        auto leaf = SimpleNodeData::leafDataWithName(name);
        leaf->setIconRep(std::move(icon));
        leaf->setFileSize(size);
        leaf->setModificationDate(date);
        leaf->setIdentity(identity);
        node.insertChild(SimpleTreeNode::treeNodeWithData(leaf), node.numberOfChildren());
        return leaf;
    };
    for (const AppAttrbItem* bundle : group.bundles) {
        const auto leaf =
            add(bundle->DirectoryPathName, bundle->DirectorySize,
                {IconRequest::BareName, bundle->DirectoryName}, std::nullopt, identityOf(*bundle));
        leaf->setProtected(search.isProtected(*bundle));
        isProtected &= leaf->isProtected();
        leaf->setBundleDigest(bundle->digest);
        folders.tie(*leaf, nullptr);
        if (places != nullptr) setPlace(*leaf, places->of(*bundle));
    }
    for (const fileAttrbItem* file : group.files) {
        const std::string path = file->filePathName();
        const auto leaf = add(path, file->fileSize, {IconRequest::Path, path},
                              file->ModificationDate(), identityOf(*file));
        leaf->setHardLinks(file->links);
        leaf->setRecalled(file->isRecalled);
        leaf->setProtected(search.isProtected(*file));
        isProtected &= leaf->isProtected();
        folders.tie(*leaf, file);
        if (places != nullptr) setPlace(*leaf, places->of(*file));
    }
    simpleData(node)->setProtected(isProtected);
}

}  // namespace

EntryIdentity identityOf(const fileAttrbItem& file) {
    return {.device = file.device,
            .inode = file.inode,
            .type = file.type,
            .size = file.fileSize,
            .modified = file.modified,
            .changed = file.changed,
            .inodePasses = file.inodePasses};
}

EntryIdentity identityOf(const AppAttrbItem& bundle) {
    return {.device = bundle.device,
            .inode = bundle.inode,
            .type = bundle.isLink ? FileType::SymbolicLink : FileType::Folder,
            .inodePasses = bundle.inodePasses};
}

DuplicateFilesOpt::DuplicateFilesOpt(const FileSystem& files) : m_files(files) {}
DuplicateFilesOpt::~DuplicateFilesOpt() = default;

void DuplicateFilesOpt::setSearchOption(const SearchOption* option) {
    if (option == nullptr) return;
    m_bSearchHiddenFile = option->searchHidden;
    m_bSearchSystemDirectory = option->searchSystem;
}

std::shared_ptr<duplicateFind> DuplicateFilesOpt::current() const {
    const std::lock_guard lock(m_mutex);
    return m_findDuplicate;
}

void DuplicateFilesOpt::beginSearchAtPath(const std::string& path, std::uint64_t withLimitSize) {
    SearchRequest request;
    request.roots = {path};
    request.limit = withLimitSize;
    beginSearch(request);
}

void DuplicateFilesOpt::beginSearch(const SearchRequest& request) {
    constexpr const char* name = "-[DuplicateFilesOpt beginSearchAtPath:withLimitSize:]";
    if (current()) {
        Log::engine(name, " error need reinit");
        return;
    }
    for (const std::string& path : request.roots)
        Log::engine(name, " -INFO:search Path:{}  limitedsize:{}", path, request.limit);
    const auto search = std::make_shared<duplicateFind>(m_files);
    search->setSearchOption(m_bSearchHiddenFile, m_bSearchSystemDirectory);
    {
        const std::lock_guard lock(m_mutex);
        if (!request.roots.empty()) m_CurrentSearchPath = request.roots.front();
        m_findDuplicate = search;
        if (m_stopAsked) search->stopSearch();
    }
    search->search(request);
}

std::uint64_t DuplicateFilesOpt::getProgress() const {
    const auto search = current();
    return search ? search->getProgress() : 0;
}

std::string DuplicateFilesOpt::getCurrentSearchFile() {
    const auto search = current();
    std::string path = search ? search->getCurrentSearchPath() : std::string();
    const std::lock_guard lock(m_mutex);
    if (!path.empty()) m_CurrentSearchPath = std::move(path);
    return m_CurrentSearchPath;
}

void DuplicateFilesOpt::stopSearch() {
    const std::lock_guard lock(m_mutex);
    m_stopAsked = true;
    if (m_findDuplicate) m_findDuplicate->stopSearch();
}

void DuplicateFilesOpt::visitGroups(const Visit& visit) const {
    const auto search = current();
    if (!search) return;
    std::vector<AppGroup> bundles;
    FileList files;
    search->getAllAppDuplicateDir(bundles);
    search->getAllDuplicateFile(&files);
    visitBundles(bundles, visit);
    visitFiles(files, visit);
}

bool DuplicateFilesOpt::getDuplicateFiles(std::shared_ptr<SimpleTreeNode>* root) {
    const auto search = current();
    if (!search || root == nullptr) return false;
    FileList files;
    std::vector<AppGroup> bundles;
    search->getAllDuplicateFile(&files);
    search->getAllAppDuplicateDir(bundles);
    if (files.empty() && bundles.empty()) return false;
    m_Index = m_findArray.size();
    m_findArray.insert(m_findArray.end(), files.begin(), files.end());
    m_findAppArray.insert(m_findAppArray.end(), bundles.begin(), bundles.end());

    auto top = SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("Root"));
    FolderRows folders(*search);
    folders.addTo(*top);
    auto place = static_cast<std::uint32_t>(top->numberOfChildren());
    const auto addGroup = [&](const DuplicateGroup& group) {
        ++place;
        if (folders.areTold(group)) return;
        auto data = SimpleNodeData::groupDataWithName(std::string(group.name));
        data->setExtendName(std::string(group.extension));
        data->setIconRep(IconRequest{IconRequest::FileType, std::string(group.extension)});
        data->setFileSize(group.size);
        data->setFoundAs(place);
        auto node = SimpleTreeNode::treeNodeWithData(std::move(data));
        addLeaves(*node, group, *search, folders);
        top->insertChild(std::move(node), top->numberOfChildren());
    };
    visitBundles(m_findAppArray, addGroup);
    visitFiles(m_findArray, addGroup);
    *root = std::move(top);
    return true;
}

}  // namespace orrinvale
