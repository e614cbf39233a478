// The rows are texts for whoever listens to them; the cells draw them.
#include "ui/diagnostics/CustomComInfoView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <algorithm>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

class CellDrawing final : public QStyledItemDelegate {
public:
    explicit CellDrawing(CustomComInfoView& view) : QStyledItemDelegate(&view), m_view(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool isCurrent = index == m_view.currentIndex() && m_view.hasFocus();
        m_view.cell(index.row())
            .drawInterior(*painter, option.rect, m_view.titleWidth(), isCurrent);
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& /*index*/) const override {
        return {0, ComputerInfoCell::height};
    }

private:
    const CustomComInfoView& m_view;
};

// A value that the field cut is read once more: a list has room for the whole of it.
template <std::size_t Width>
QString wholeValue(const std::array<char, Width>& field, const char* name,
                   const SystemValues& system) {
    const std::string value =
        isFull(field) ? system.sysctlbyname(name).value_or(fieldText(field)) : fieldText(field);
    return value.empty() ? QStringLiteral("–") : onOneLine(QString::fromStdString(value));
}

}  // namespace

CustomComInfoView::CustomComInfoView(const SystemValues& system, QWidget* parent)
    : QListView(parent), m_tableItem(new QStandardItemModel(this)) {
    setObjectName(QStringLiteral("customComInfoView"));
    setAccessibleName(tr("About this computer"));
    setModel(m_tableItem);
    setItemDelegate(new CellDrawing(*this));
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(NoEditTriggers);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFixedHeight(rowCount * ComputerInfoCell::height);
    awakeFromNib(system);
}

void CustomComInfoView::awakeFromNib(const SystemValues& system) {
    static_cast<void>(getSysInfo(&m_systemInfo, system));  // what it lacks is not told
    const _SYS_INFO& info = m_systemInfo;
    const QString memory = info.TotalMem == 0
                               ? QStringLiteral("–")
                               : shownSize(UtilityFunction::formatValue(info.TotalMem, 1024));
    m_cells = {{{QStringLiteral("model_identifier.png"), tr("Model Identifier:"),
                 wholeValue(info.Model, "hw.model", system)},
                {QStringLiteral("cpu_vendor.png"), tr("CPU Vendor:"),
                 wholeValue(info.CpuVendor, "machdep.cpu.vendor", system)},
                {QStringLiteral("cpu_brand.png"), tr("CPU Brand:"),
                 wholeValue(info.CpuBrandString, "machdep.cpu.brand_string", system)},
                {QStringLiteral("memory.png"), tr("Memory:"), memory},
                {QStringLiteral("os_type.png"), tr("OS Type:"),
                 wholeValue(info.OSType, "kern.ostype", system)},
                {QStringLiteral("os_rdease.png"), tr("OS Release:"),
                 wholeValue(info.OSVersion, "kern.osrelease", system)},
                {QStringLiteral("hostname.png"), tr("Hostname:"),
                 wholeValue(info.Hostname, "kern.hostname", system)}}};
    for (const ComputerInfoCell& each : m_cells) {
        auto* const item =
            new QStandardItem(each.titleText() + QLatin1Char(' ') + each.valueText());
        item->setToolTip(asToolTip(each.valueText()));
        m_tableItem->appendRow(item);
    }
    setCurrentIndex(m_tableItem->index(0, 0));
}

int CustomComInfoView::titleWidth() const {
    int widest = 0;
    for (const ComputerInfoCell& each : m_cells) widest = std::max(widest, each.titleWidth());
    return widest;
}

void CustomComInfoView::copy() const {
    QGuiApplication::clipboard()->setText(currentIndex().data().toString());
}

}  // namespace orrinvale
