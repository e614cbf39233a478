// LoginItemViews: the controls of the login items page.
#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QString>
#include <utility>
#include <vector>

class QLabel;
class QListWidget;
class QStackedWidget;
class QWidget;

namespace orrinvale {

class ElidedLabel;
class LeftRail;
class TextImageButton;
class TickBox;
class TickOutline;

/// The view is deleted with this object unless a window took it over. Main thread only.
struct LoginItemViews final {
    Q_DECLARE_TR_FUNCTIONS(LoginItemViews)

public:
    enum Content { Items, Background, Words, Failed };

    LoginItemViews();
    ~LoginItemViews();
    LoginItemViews(const LoginItemViews&) = delete;
    LoginItemViews& operator=(const LoginItemViews&) = delete;

    /// Names with what they are, read only.
    void showServices(const std::vector<std::pair<QString, QString>>& services) const;

    QPointer<QWidget> view;
    LeftRail* rail = nullptr;
    ElidedLabel* titleLabel = nullptr;
    QStackedWidget* content = nullptr;
    TickOutline* tableView = nullptr;
    QListWidget* backgroundList = nullptr;
    QLabel* emptyLabel = nullptr;
    QWidget* loginItemBottom = nullptr;
    ElidedLabel* quietLine = nullptr;
    TickBox* hideBox = nullptr;
    TextImageButton* addButton = nullptr;

private:
    void makeList();
    void initBottomView();
    void putTogether();
};

}  // namespace orrinvale
