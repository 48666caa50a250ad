#pragma once

#include "workspaces/frm_search_widgets.h"
#include "workspaces/saved_searches.h"
#include "workspaces/search_filter.h"
#include "workspaces/search_surroundings.h"
#include "workspaces/search_workspaces.h"

#include <QtWidgets/QWidget>

#include <cstdint>
#include <string_view>

class QDateEdit;
class QLineEdit;

namespace tremor {

// The window "Search Parameters", modeless: the filters of a search, and the searches of the past.
// While it is open polling stands still (session.PollingSuspended). It deletes itself when it is
// closed (Cancel, Escape, the title bar, or an accepted search).
//
// Object names: frmSearch, and those of SearchWidgets.
class frmSearch : public QWidget {
    Q_OBJECT

  public:
    // The parts of the search must outlive the window: a search may still run when it is closed.
    frmSearch(const SearchContext& context, SearchFilter& filter, SearchWorkspaces& workspaces,
              SavedSearches& saved, QWidget* owner);

    // To be called once, before the window is shown. `workspaceShown`: the filters of the
    // workspace in use are offered; else the dates from the oldest event to today. The first seven
    // days of a month have no day of the same month a week before, which is reported as error 380.
    void Form_Load(bool workspaceShown);

    // A click on the map is wanted as the centre of a search by distance.
    bool wantsPlace() const;
    void setPlace(std::string_view latitude, std::string_view longitude);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void connectSavedSearches();
    void connectFilters();

    void numberChanged(QLineEdit* box);
    void settleNumbers();
    void setNumber(QLineEdit* box, std::string_view text);
    bool isMagnitude(const QLineEdit* box) const;
    std::string_view resetTextOf(const QLineEdit* box) const;
    void setDay(QDateEdit* picker, DateTime date);
    SearchParameters parameters();

    void initializeTxt();
    void loadFromWorkspace();
    void areaMethodChanged();
    void OptManualGPS_Click();
    void chk_saveWrkSpace_Click(bool checked);
    void cmd_query_Click();

    void fillGridSearch();
    void cmdAddSearch_Click();
    void cmdSetName_Click();
    void cmdRemoveSearch_Click();
    void fxGridSearch_Click();
    void loadSearch(std::int32_t id);
    void setAreaMethod(std::string_view method);
    int rowOf(std::int32_t id) const; // -1 when the grid does not show it
    void StartEditing(int row, int col);
    void StopEditing(bool commit);

    SearchContext context_;
    SearchFilter& filter_;
    SearchWorkspaces& workspaces_;
    SavedSearches& saved_;

    SearchWidgets widgets_;

    std::int32_t selectedSearchId_ = 0; // `_` of the row that was clicked last
    bool editing_ = false;
    int editRow_ = 0;
    int editCol_ = 0;
    bool searching_ = false;
};

} // namespace tremor
