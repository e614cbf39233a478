// The decision is which copy stands beside the chosen one.
#include "ui/duplicates/duplicatePreview.h"

#include <algorithm>

#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/page/PageServices.h"
#include "ui/preview/PreviewHost.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {
namespace {

// Of a group its first two copies, of a copy that one and the first other that stays: what is
// ticked is compared with what will be left of it.
// The paths that are listed, of a large group not all, have what is looked at among them.
void listFirst(PreviewSubject& subject, const std::string& path) {
    if (path.empty() || std::ranges::find(subject.paths, path) != subject.paths.end()) return;
    subject.paths.pop_back();
    subject.paths.insert(subject.paths.begin(), path);
}

// Of what lies in a folder the same place in each copy of that.
PreviewSubject subjectOf(const TreeNode& node, const std::string& below) {
    const auto pathOf = [&](const TreeNode& copy) {
        const std::string& path = simpleData(copy)->name();
        return below.empty() ? path : joinPath(path, below);
    };
    const TreeNode& group = simpleData(node)->isGroup() ? node : *node.nodeParent();
    PreviewSubject subject;
    subject.total = group.numberOfChildren();
    const std::size_t listed = std::min(subject.total, PreviewSubject::mostPaths);
    for (std::size_t i = 0; i < listed; ++i)
        subject.paths.push_back(pathOf(*group.childAtIndex(i)));
    if (subject.paths.empty()) return subject;
    subject.chosen = &node == &group ? subject.paths.front() : pathOf(node);
    bool staysBeside = false;
    for (std::size_t i = 0; i < subject.total && !staysBeside; ++i) {
        const TreeNode& copy = *group.childAtIndex(i);
        if (pathOf(copy) == subject.chosen) continue;
        staysBeside = simpleData(copy)->selectNum() == 0;
        if (staysBeside || subject.beside.empty()) subject.beside = pathOf(copy);
    }
    listFirst(subject, subject.beside);
    listFirst(subject, subject.chosen);
    return subject;
}

}  // namespace

void startPreview(const SameFileDeleteViews& views, const PageServices& parts) {
    views.previewPane->start(*parts.files, parts.reveal);
    views.previewHost->setSwitch(*views.previewBtn, *views.detailView, *parts.defaults,
                                 "previewPaneShown");
}

void showPreview(const SameFileDeleteViews& views, const DuplicateResultModel& model) {
    const QModelIndex current = views.outline->currentIndex();
    const bool isInFolder = DuplicateResultModel::isInFolder(current);
    const TreeNode::Pointer node = model.node(isInFolder ? current.parent() : current);
    views.previewPane->choose(node ? subjectOf(*node, model.pathInFolder(current))
                                   : PreviewSubject());
}

}  // namespace orrinvale
