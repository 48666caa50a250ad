#include "setup/setup_pages.h"

#include "core/named_widget.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QVBoxLayout>

#include <string>

namespace tremor {
namespace {

constexpr int numberWidth = 72; // pixels; five digits at every usual font
constexpr int spacing = 12;     // pixels, between the controls of a row

QString tr(const char* text) {
    return QCoreApplication::translate("FrmSetup", text);
}

QGroupBox* frame(const char* objectName, const char* caption) {
    return named<QGroupBox>(objectName, tr(caption));
}

QGridLayout* gridIn(QWidget* owner) {
    auto* grid = new QGridLayout(owner);
    grid->setHorizontalSpacing(spacing);
    return grid;
}

QLineEdit* numberBox(const char* objectName) {
    auto* box = named<QLineEdit>(objectName);
    box->setFixedWidth(numberWidth);
    return box;
}

QLineEdit* passwordBox(const char* objectName) {
    auto* box = named<QLineEdit>(objectName);
    box->setEchoMode(QLineEdit::Password);
    return box;
}

// A button that opens a chooser for the box beside it.
QPushButton* browseButton(const char* objectName, const char* accessibleName) {
    auto* button = named<QPushButton>(objectName, QStringLiteral("…"));
    button->setFixedWidth(36);
    button->setAccessibleName(tr(accessibleName));
    button->setToolTip(tr(accessibleName));
    return button;
}

// A caption and its box in the next two columns; the caption's mnemonic leads to the box.
void addField(QGridLayout* grid, int row, int column, const char* caption, QWidget* box,
              int columns = 1) {
    auto* label = new QLabel(tr(caption));
    label->setBuddy(box);
    grid->addWidget(label, row, column);
    grid->addWidget(box, row, column + 1, 1, columns);
}

QHBoxLayout* inARow(std::initializer_list<QWidget*> widgets) {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing);
    for (QWidget* widget : widgets)
        row->addWidget(widget);
    row->addStretch(1);
    return row;
}

// A box with a fixed width and the unit behind it.
QHBoxLayout* withUnit(QWidget* box, const char* unit) {
    return inARow({box, new QLabel(tr(unit))});
}

void exclusive(QWidget* owner, std::initializer_list<QRadioButton*> buttons) {
    auto* group = new QButtonGroup(owner);
    for (QRadioButton* button : buttons)
        group->addButton(button);
}

QWidget* makeLocalSource(SetupControls& c) {
    c.Frame6 = frame("Frame6", "Local source");
    c.ChkUseLocalSource = named<QCheckBox>("ChkUseLocalSource", tr("Use &Local Source"));
    c.opt_liveloc = named<QRadioButton>("opt_liveloc", tr("LIVELOC"));
    c.opt_seiscomp = named<QRadioButton>("opt_seiscomp", tr("Seiscomp 2.5"));
    exclusive(c.Frame6, {c.opt_liveloc, c.opt_seiscomp});
    c.TxtLocalSourcePath = named<QLineEdit>("TxtLocalSourcePath");
    c.cmdPathSeismoscompServer = browseButton("cmdPathSeismoscompServer", "Choose the folder");
    c.TxtLocalPollEvery = numberBox("TxtLocalPollEvery");
    QGridLayout* grid = gridIn(c.Frame6);
    grid->setColumnStretch(1, 1);
    grid->addWidget(c.ChkUseLocalSource, 0, 0);
    grid->addLayout(inARow({c.opt_liveloc, c.opt_seiscomp}), 0, 1, 1, 2);
    addField(grid, 1, 0, "Folder", c.TxtLocalSourcePath);
    grid->addWidget(c.cmdPathSeismoscompServer, 1, 2);
    grid->addWidget(new QLabel(tr("Poll every")), 2, 0);
    grid->addLayout(withUnit(c.TxtLocalPollEvery, "minutes"), 2, 1);
    return c.Frame6;
}

// Address, user name, password and times, which both remote sources have.
void addRemoteFields(QGridLayout* grid, int row, QLineEdit* address, QLineEdit* user,
                     QLineEdit* password, QLineEdit* pollEvery, QLineEdit* lastHours) {
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    addField(grid, row, 0, "Address", address, 3);
    addField(grid, row + 1, 0, "User name", user);
    addField(grid, row + 1, 2, "Password", password);
    grid->addWidget(new QLabel(tr("Poll every")), row + 2, 0);
    grid->addLayout(withUnit(pollEvery, "minutes"), row + 2, 1);
    grid->addWidget(new QLabel(tr("Ask for the last")), row + 2, 2);
    grid->addLayout(withUnit(lastHours, "hours"), row + 2, 3);
}

QWidget* makePrimarySource(SetupControls& c) {
    c.Frame7 = frame("Frame7", "Primary source");
    c.ChkUsePrimaryRemoteSource =
        named<QCheckBox>("ChkUsePrimaryRemoteSource", tr("Use &primary remote source"));
    c.opt_Ingv = named<QRadioButton>("opt_Ingv", tr("INGV Feed RSS"));
    c.opt_Iside = named<QRadioButton>("opt_Iside", tr("ISIDE"));
    exclusive(c.Frame7, {c.opt_Ingv, c.opt_Iside});
    c.TxtPrimaryDataSource = named<QLineEdit>("TxtPrimaryDataSource");
    c.TxtPrimarySourceUsername = named<QLineEdit>("TxtPrimarySourceUsername");
    c.TxtPrimarySourcePassword = passwordBox("TxtPrimarySourcePassword");
    c.TxtPrimaryPollEvery = numberBox("TxtPrimaryPollEvery");
    c.TxtPrimaryLastNHours = numberBox("TxtPrimaryLastNHours");
    QGridLayout* grid = gridIn(c.Frame7);
    grid->addWidget(c.ChkUsePrimaryRemoteSource, 0, 0, 1, 2);
    grid->addLayout(inARow({c.opt_Ingv, c.opt_Iside}), 0, 2, 1, 2);
    addRemoteFields(grid, 1, c.TxtPrimaryDataSource, c.TxtPrimarySourceUsername,
                    c.TxtPrimarySourcePassword, c.TxtPrimaryPollEvery, c.TxtPrimaryLastNHours);
    return c.Frame7;
}

QWidget* makeAlternateSource(SetupControls& c) {
    c.Frame8 = frame("Frame8", "Alternate source");
    c.ChkUseAlternateRemoteSource =
        named<QCheckBox>("ChkUseAlternateRemoteSource", tr("Use &alternate remote source"));
    c.alternateArea = named<QWidget>("alternateArea");
    c.opt_EMSC = named<QRadioButton>("opt_EMSC", tr("EMSC"));
    c.opt_USGS = named<QRadioButton>("opt_USGS", tr("USGS"));
    c.Option1 = named<QRadioButton>("Option1", tr("Other"));
    exclusive(c.alternateArea, {c.opt_EMSC, c.opt_USGS, c.Option1});
    c.TxtAlternateDataSource = named<QLineEdit>("TxtAlternateDataSource");
    c.TxtAlternateSourceUsername = named<QLineEdit>("TxtAlternateSourceUsername");
    c.TxtAlternateSourcePassword = passwordBox("TxtAlternateSourcePassword");
    c.TxtAlternatePollEvery = numberBox("TxtAlternatePollEvery");
    c.TxtAlternateLastNHours = numberBox("TxtAlternateLastNHours");
    QGridLayout* grid = gridIn(c.alternateArea);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addLayout(inARow({c.opt_EMSC, c.opt_USGS, c.Option1}), 0, 0, 1, 4);
    addRemoteFields(grid, 1, c.TxtAlternateDataSource, c.TxtAlternateSourceUsername,
                    c.TxtAlternateSourcePassword, c.TxtAlternatePollEvery,
                    c.TxtAlternateLastNHours);
    auto* layout = new QVBoxLayout(c.Frame8);
    layout->addWidget(c.ChkUseAlternateRemoteSource);
    layout->addWidget(c.alternateArea);
    return c.Frame8;
}

QWidget* makeEventsReported(SetupControls& c) {
    auto* Frame2 = frame("Frame2", "Events Reported");
    c.optAll = named<QRadioButton>("optAll", tr("All "));
    c.optAl = named<QRadioButton>("optAl", tr("Alternate Source"));
    c.optPr = named<QRadioButton>("optPr", tr("Primary Source"));
    exclusive(Frame2, {c.optAll, c.optAl, c.optPr});
    c.TxtRefreshMapHours = numberBox("TxtRefreshMapHours");
    auto* hours = withUnit(c.TxtRefreshMapHours, "hours of events on map and table");
    auto* row = new QHBoxLayout(Frame2);
    row->setSpacing(2 * spacing);
    row->addLayout(inARow({c.optAll, c.optAl, c.optPr}));
    row->addLayout(hours);
    return Frame2;
}

} // namespace

QWidget* makeSourcesPage(SetupControls& controls) {
    auto* Frame1 = named<QWidget>("Frame1");
    auto* layout = new QVBoxLayout(Frame1);
    layout->addWidget(makeLocalSource(controls));
    layout->addWidget(makePrimarySource(controls));
    layout->addWidget(makeAlternateSource(controls));
    layout->addWidget(makeEventsReported(controls));
    layout->addStretch(1);
    return Frame1;
}

QWidget* makeMapPage(SetupControls& c) {
    auto* Frame3 = named<QWidget>("Frame3");
    c.cmb_shape = named<QComboBox>("cmb_shape");
    c.cmb_shape->addItems({tr("Circle"), tr("Triangle")});
    c.chk_auto_PIN = named<QCheckBox>("chk_auto_PIN", tr("&Auto"));
    c.chk_auto_PIN->setToolTip(tr("Circles, sized by magnitude and coloured by depth"));
    c.chk_user_PIN = named<QCheckBox>("chk_user_PIN", tr("&Manual"));
    c.chk_user_PIN->setToolTip(tr("Pictures from the folder of pins"));
    c.TxtPathPins = named<QLineEdit>("TxtPathPins");
    c.cmd_pinPath = browseButton("cmd_pinPath", "Choose the folder of pins");
    c.TxtAnimatedGif = named<QLineEdit>("TxtAnimatedGif");
    c.cmdBrowseGif = browseButton("cmdBrowseGif", "Choose the picture of the last event");
    c.txt_sizeSizePins = numberBox("txt_sizeSizePins");
    c.TxtDefaultZoomLevel = numberBox("TxtDefaultZoomLevel");
    c.TxtLastEventMapZoomLevel = numberBox("TxtLastEventMapZoomLevel");
    c.chk_NetStat = named<QCheckBox>("chk_NetStat", tr("Include &Network of Stations"));
    c.txtPathDbOfStationKit = named<QLineEdit>("txtPathDbOfStationKit");
    c.cmdBrowseDBStationKit = browseButton("cmdBrowseDBStationKit", "Choose the station database");

    auto* pins = new QGroupBox(tr("Markers"));
    QGridLayout* grid = gridIn(pins);
    grid->setColumnStretch(1, 1);
    addField(grid, 0, 0, "Shape", c.cmb_shape);
    grid->addWidget(new QLabel(tr("Size and colour")), 1, 0);
    grid->addLayout(inARow({c.chk_auto_PIN, c.chk_user_PIN}), 1, 1);
    grid->addWidget(new QLabel(tr("Scale")), 2, 0);
    grid->addLayout(withUnit(c.txt_sizeSizePins, "times the magnitude"), 2, 1);
    addField(grid, 3, 0, "Folder of pins", c.TxtPathPins);
    grid->addWidget(c.cmd_pinPath, 3, 2);
    addField(grid, 4, 0, "Last event", c.TxtAnimatedGif);
    grid->addWidget(c.cmdBrowseGif, 4, 2);

    auto* views = new QGroupBox(tr("Zoom levels"));
    QGridLayout* zoom = gridIn(views);
    zoom->setColumnStretch(4, 1);
    addField(zoom, 0, 0, "Map", c.TxtDefaultZoomLevel);
    addField(zoom, 0, 2, "Map of the last event", c.TxtLastEventMapZoomLevel);

    auto* stations = new QGroupBox(tr("Stations"));
    QGridLayout* rows = gridIn(stations);
    rows->setColumnStretch(1, 1);
    rows->addWidget(c.chk_NetStat, 0, 0, 1, 3);
    addField(rows, 1, 0, "Station database", c.txtPathDbOfStationKit);
    rows->addWidget(c.cmdBrowseDBStationKit, 1, 2);

    auto* layout = new QVBoxLayout(Frame3);
    layout->addWidget(pins);
    layout->addWidget(views);
    layout->addWidget(stations);
    layout->addStretch(1);
    return Frame3;
}

QWidget* makeAlertPage(SetupControls& c) {
    auto* Frame4 = named<QWidget>("Frame4");
    QGridLayout* grid = gridIn(nullptr);
    grid->setColumnStretch(3, 1);
    grid->addWidget(new QLabel(tr("Magnitude from")), 0, 1);
    grid->addWidget(new QLabel(tr("Sound")), 0, 3);
    for (int level = 0; level < 4; ++level) {
        const auto index = static_cast<std::size_t>(level);
        const auto name = [level](const std::string& base) {
            return base + '_' + std::to_string(level);
        };
        c.TxtMagLev[index] = numberBox(name("TxtMagLev").c_str());
        c.TxtMagLevSound[index] = named<QLineEdit>(name("TxtMagLevSound").c_str());
        c.cmdBrowseSound[index] = browseButton(name("cmdBrowseSound").c_str(), "Choose the sound");
        c.CmdTest[index] = named<QPushButton>(name("CmdTest").c_str(), tr("Play file WAV"));
        auto* caption = new QLabel(tr("Level %1").arg(level + 1));
        caption->setBuddy(c.TxtMagLev[index]);
        grid->addWidget(caption, level + 1, 0);
        grid->addWidget(c.TxtMagLev[index], level + 1, 1);
        grid->addWidget(c.TxtMagLevSound[index], level + 1, 3);
        grid->addWidget(c.cmdBrowseSound[index], level + 1, 4);
        grid->addWidget(c.CmdTest[index], level + 1, 5);
    }
    auto* layout = new QVBoxLayout(Frame4);
    layout->addLayout(grid);
    layout->addStretch(1);
    return Frame4;
}

QWidget* makeMiscellaneousPage(SetupControls& c) {
    auto* page = named<QWidget>("frameMiscellaneous");
    auto* channels = new QGroupBox(tr("Notification of new events"));
    auto* grid = new QGridLayout(channels);
    grid->setColumnStretch(2, 1);
    int row = 0;
    const auto addChannel = [&](QCheckBox*& box, const char* boxName, const char* caption,
                                QPushButton*& button, const char* buttonName) {
        box = named<QCheckBox>(boxName, tr(caption));
        button = named<QPushButton>(buttonName, tr("Settings…"));
        grid->addWidget(box, row, 0);
        grid->addWidget(button, row++, 1);
    };
    addChannel(c.chkEnableNotificationTelegram, "chkEnableNotificationTelegram",
               "Notify by &Telegram", c.cmdNotTelegram, "cmdNotTelegram");
    addChannel(c.chkEnableNotificationPagerlink, "chkEnableNotificationPagerlink",
               "Notify by &Pagerlink", c.cmdNotPagr, "cmdNotPagr");
    addChannel(c.chkEnableNotificationEmail, "chkEnableNotificationEmail", "Notify by &E-mail",
               c.cmdNotEmail, "cmdNotEmail");

    auto* places = new QGroupBox(tr("Points of interest"));
    auto* column = new QVBoxLayout(places);
    c.cmd_UpdateGeo = named<QPushButton>("cmd_UpdateGeo", tr("&Update POI from GeoNames"));
    c.cmd_UpdateComuni =
        named<QPushButton>("cmd_UpdateComuni", tr("A&dministrate Points of Interest(POI)"));
    column->addWidget(c.cmd_UpdateGeo, 0, Qt::AlignLeft);
    column->addWidget(c.cmd_UpdateComuni, 0, Qt::AlignLeft);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(channels);
    layout->addWidget(places);
    layout->addStretch(1);
    return page;
}

} // namespace tremor
