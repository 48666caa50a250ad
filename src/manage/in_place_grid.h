#pragma once

#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QStyledItemDelegate>

#include <limits>
#include <utility>

namespace tremor {

// Makes the editor of a cell and remembers the one that is open.
class CellDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex&) const override {
        editor_ = new QLineEdit(parent);
        editor_->setObjectName(QStringLiteral("txt_grid"));
        editor_->setFrame(false);
        editor_->setMaxLength(std::numeric_limits<int>::max()); // a long text must not be cut
        return editor_;
    }
    QLineEdit* editor() const { return editor_; }

  private:
    mutable QPointer<QLineEdit> editor_;
};

// A table whose cells are edited in place, in the box `txt_grid` over the current cell. A key, F2
// or a double click opens it; Return keeps the text, Escape leaves it. `View` is QTableView or
// derived from it.
template <class View>
class InPlaceGrid : public View {
  public:
    template <class... Arguments>
    explicit InPlaceGrid(Arguments&&... arguments)
        : View(std::forward<Arguments>(arguments)...), delegate_(new CellDelegate(this)) {
        this->setItemDelegate(delegate_);
        this->setEditTriggers(View::DoubleClicked | View::EditKeyPressed);
        this->setSelectionMode(View::SingleSelection);
        this->setTabKeyNavigation(false);
    }

    // Keeps what is being typed.
    void keepOpenEdit() {
        if (isEditing())
            this->commitData(delegate_->editor());
        dropOpenEdit();
    }

    // Ends editing and leaves the cell as it is.
    void dropOpenEdit() {
        if (isEditing())
            View::closeEditor(delegate_->editor(), QAbstractItemDelegate::NoHint);
    }

  protected:
    // Called when Return has kept the text of the current cell, changed or not.
    virtual void returned() = 0;

    // The key that starts editing is not typed.
    void keyPressEvent(QKeyEvent* event) override {
        const bool starts = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                            event->key() == Qt::Key_Backspace ||
                            (!event->text().isEmpty() && event->text().at(0).isPrint());
        const bool isCommand = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
        const bool editable = this->currentIndex().flags().testFlag(Qt::ItemIsEditable);
        if (starts && !isCommand && editable && this->state() != View::EditingState)
            this->edit(this->currentIndex(), View::AllEditTriggers, event);
        else
            View::keyPressEvent(event);
    }

    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override {
        View::closeEditor(editor, hint);
        if (hint == QAbstractItemDelegate::SubmitModelCache)
            returned();
    }

  private:
    bool isEditing() const {
        return this->state() == View::EditingState && delegate_->editor() != nullptr;
    }

    CellDelegate* delegate_ = nullptr;
};

} // namespace tremor
