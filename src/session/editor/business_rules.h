#pragma once

#include "core/component_factory.h"
#include "database/database.h"
#include "form/business_rules_link.h"
#include "form/form_services.h"
#include "session/editor/range_notes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbn::form {
class GUI;
}

namespace dbn {

namespace session {
class TargetDescriptions;
}

// The class name under which the editor is created.
inline constexpr const char* kBusinessRulesClass = "CVL_DBN_Node.Business_Rules";

// The dial-by-name node editor. The host creates one and calls
// ShowNodeEditor; the form creates a second one (FormBusinessRules) for the
// work its handlers start. Each object owns its own DataBase for its whole life.
class Business_Rules : public Component, public form::BusinessRulesLink {
public:
    explicit Business_Rules(form::FormServices& services);
    // A second object working on an already loaded form (FormBusinessRules).
    Business_Rules(form::FormServices& services, form::GUI& form);
    // The same, sharing the host object's DataBase: one connection a process.
    Business_Rules(form::FormServices& services, form::GUI& form, std::shared_ptr<DataBase> db);
    ~Business_Rules() override;

    // Loads, fills and shows the editor for one node; returns when the form
    // closes. Always false.
    bool ShowNodeEditor(std::int16_t Config_ID, std::int16_t Partition_ID,
                        std::int16_t Node_Number);

    bool EditingNodeZero() const noexcept { return editingNodeZero_; }
    // True when the last ShowNodeEditor could not open the database (it then
    // showed one box and no form).
    bool DatabaseUnavailable() const noexcept { return databaseUnavailable_; }
    // True when the last ShowNodeEditor showed the form: the node existed and
    // loaded.
    bool NodeShown() const noexcept { return nodeShown_; }
    DataBase& Db() noexcept { return db_; }
    form::GUI& Form();
    form::FormServices& Services() noexcept { return services_; }

    // ---- Start-up ------------------------------------------------------
    void ResetAllGUIListView();
    void SetInitialControlState();
    void LoadNodeName();
    void LoadMSGLISTNOOPNode();
    void LoadAllInstructionsNode();
    void LoadStaticConstants();
    void LoadExistingNodesInRecordSelector(std::int16_t Node_Number);

    // ---- Loading a node ------------------------------------------------
    bool LoadData(std::int16_t nodeNumber) override;
    bool LoadFailed() const noexcept override { return loadFailed_; }
    // Fills the custom settings from the node's row and prompt rows, read
    // before with the descriptions of their targets.
    bool AssignCustomSettingsValues(RowSet& node, RowSet& prompts,
                                    session::TargetDescriptions& descriptions);

    // ---- Saving --------------------------------------------------------
    bool SaveChanges(std::int16_t nodeNumber) override;
    std::optional<std::string> NodeDescription(std::int32_t typeID, std::int16_t number) override;
    void CheckForUnReferencedNodes();
    void AddNodeTolstRequired(std::string key, std::string typeID, std::string number);
    bool IsNodeExisted(std::string typeID, std::string number);
    // True when the node was created (its template's node row was copied).
    bool AutoCreateNode(std::string templateNumber, std::string newNumber, std::string typeID);

private:
    // Lets the form's services process pending events while a command waits
    // for a lock.
    void KeepPaintingWhileWaiting();
    // Opens the database and reads the node once; a failure is shown in one
    // box and answers false.
    bool OpenDatabase(std::int16_t Config_ID, std::int16_t Partition_ID, std::int16_t Node_Number);
    // Reads what the start-up will read, in two batches.
    void ReadStartUpAhead(std::int16_t Config_ID, std::int16_t Partition_ID,
                          std::int16_t Node_Number);

    enum class WriteOutcome { Committed, Changed, Vanished };
    struct WriteResult {
        WriteOutcome outcome;
        // The stored state after a committed write.
        std::optional<std::string> savedState;
        // For a node changed meanwhile: who changed it, when, and how.
        std::string changeDetails = {};
    };
    WriteResult WriteShownNode(std::int16_t nodeNumber, bool overwrite);
    // After a committed save: names the gathered references whose nodes are
    // still missing, in one box.
    void ReportMissingReferences(const std::string& node);

    form::FormServices& services_;
    std::shared_ptr<DataBase> sharedDb_;
    DataBase& db_;
    bool editingNodeZero_ = false;
    bool databaseUnavailable_ = false;
    bool nodeShown_ = false;
    // The form this object works on: owned when this object showed it,
    // borrowed when this is the form's own object.
    std::unique_ptr<form::GUI> ownedForm_;
    form::GUI* form_ = nullptr;
    // Set by SaveChanges while it runs the referenced-node check: the check
    // then leaves its last copies uncommitted for the save to join.
    bool keepCopiesOpen_ = false;
    // Set when the last referenced-node check stopped on an error (shown):
    // the save then writes nothing.
    bool checkFailed_ = false;
    // Set when the last LoadData stopped on a database failure.
    bool loadFailed_ = false;
    // Set when the operator cancelled the last check: the save does not go on.
    bool checkCancelled_ = false;
    // Per row of the last check's required-node lists: found or created.
    std::vector<bool> referenceFound_;
    // Settings the node being loaded shows through a fallback.
    session::RangeNotes rangeNotes_;
};

}  // namespace dbn
