#pragma once
// The cell bookkeeping a table and a grid share: the cells on screen by index
// path, the classes registered per reuse identifier, and a queue per
// identifier of cells that scrolled out and wait to be handed out again.
// The owning view decides which index paths are wanted and where cells go;
// this only moves cells between "shown" and "queued".
//
// Making a cell runs the data source's code, which may reload the view,
// lay it out again or drop it. So nothing here hands out a reference into
// the map of shown cells, and every change to that map moves a generation
// count: a layout pass notes the generation before it calls out and stops
// when it finds it moved (the pass that the change asked for does the work).

#include <morvane/ui/collections/IndexPath.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace morvane::ui::detail {

template <class Cell> class CellRecycler {
  public:
    using Factory = std::function<std::shared_ptr<Cell>(const std::string& identifier)>;
    using ClassCheck = std::function<bool(const Cell&)>;

    // A null factory forgets the identifier's registration.
    void registerClass(const std::string& identifier, Factory factory, ClassCheck isOfClass) {
        if (!factory) {
            registrations_.erase(identifier);
            return;
        }
        registrations_[identifier] = Registration{std::move(factory), std::move(isOfClass)};
    }

    // A queued cell for the identifier (after its prepareForReuse), or a new
    // one from the registered class; null when neither exists.
    std::shared_ptr<Cell> dequeue(const std::string& identifier) {
        auto queue = queues_.find(identifier);
        if (queue != queues_.end() && !queue->second.empty()) {
            auto cell = std::move(queue->second.back());
            queue->second.pop_back();
            cell->prepareForReuse();
            return cell;
        }
        auto registration = registrations_.find(identifier);
        if (registration == registrations_.end()) return nullptr;
        auto cell = registration->second.factory(identifier);
        if (cell) cell->reuseIdentifier_ = identifier;
        return cell;
    }

    // Takes in a cell the data source handed over. A cell of another class
    // than its identifier's registration could not be handed out again for
    // that identifier: it is marked so it is dropped, not queued, when it
    // leaves the screen, and false is returned.
    bool adopt(const std::shared_ptr<Cell>& cell) {
        auto reg = registrations_.find(cell->reuseIdentifier());
        if (reg == registrations_.end() || !reg->second.isOfClass || reg->second.isOfClass(*cell))
            return true;
        cell->reuseIdentifier_ = kUnusable;
        return false;
    }
    // Takes the cell out of any queue (a data source may hand back a cell it
    // dequeued earlier and that the queue still holds).
    void unqueue(const std::shared_ptr<Cell>& cell) {
        for (auto& [id, queue] : queues_)
            std::erase(queue, cell);
    }

    // ---- Cells on screen ---------------------------------------------------------
    const std::map<IndexPath, std::shared_ptr<Cell>>& visible() const { return visible_; }

    // Moves whenever shown cells are given back or the owner's measurements
    // are redone (invalidate), and at the start of every layout pass.
    std::uint64_t generation() const { return generation_; }
    std::uint64_t invalidate() { return ++generation_; }

    // Shows the cell at the index path (the path held no cell).
    void show(IndexPath p, std::shared_ptr<Cell> cell) { visible_[p] = std::move(cell); }
    // A cell made for a pass that was given up: back to its queue.
    void giveBack(const std::shared_ptr<Cell>& cell) { enqueue(cell); }

    std::shared_ptr<Cell> cellAt(IndexPath p) const {
        auto it = visible_.find(p);
        return it == visible_.end() ? nullptr : it->second;
    }
    std::optional<IndexPath> indexPathOf(const Cell& cell) const {
        for (auto& [path, c] : visible_)
            if (c.get() == &cell) return path;
        return std::nullopt;
    }
    std::vector<std::shared_ptr<Cell>> visibleCells() const {
        std::vector<std::shared_ptr<Cell>> cells;
        for (auto& [path, cell] : visible_)
            cells.push_back(cell);
        return cells;
    }
    std::vector<IndexPath> visibleIndexPaths() const {
        std::vector<IndexPath> paths;
        for (auto& [path, cell] : visible_)
            paths.push_back(path);
        return paths;
    }
    // Cells that exist now: on screen and waiting for reuse.
    int liveCount() const {
        std::size_t n = visible_.size();
        for (auto& [id, queue] : queues_)
            n += queue.size();
        return int(n);
    }

    // ---- Giving cells back -------------------------------------------------------
    // Every visible cell goes back to its queue.
    void recycleAll() {
        ++generation_;
        auto leaving = std::move(visible_);
        visible_.clear();
        for (auto& [path, cell] : leaving)
            enqueue(cell);
    }
    // The cell of one index path, if shown.
    void recycle(IndexPath p) {
        auto it = visible_.find(p);
        if (it == visible_.end()) return;
        ++generation_;
        auto cell = std::move(it->second);
        visible_.erase(it);
        enqueue(cell);
    }
    // Cells whose index path is not in `wanted` (sorted) go back first, so
    // the paths coming in can take them. `leaving` hears of each before.
    template <class Leaving> void recycleAllBut(const std::vector<IndexPath>& wanted, Leaving&& leaving) {
        std::vector<IndexPath> going;
        for (auto& [path, cell] : visible_)
            if (!std::binary_search(wanted.begin(), wanted.end(), path)) going.push_back(path);
        for (IndexPath path : going) {
            leaving(path);
            recycle(path);
        }
    }
    // Lets go of queued cells past `keep`, oldest first.
    void trimQueues(std::size_t keep) {
        std::size_t queued = std::size_t(liveCount()) - visible_.size();
        for (auto& [id, queue] : queues_) {
            while (queued > keep && !queue.empty()) {
                queue.front()->removeFromSuperview();
                queue.erase(queue.begin());
                --queued;
            }
        }
    }

  private:
    struct Registration {
        Factory factory;
        ClassCheck isOfClass;
    };
    // Cells that cannot be asked for again carry this identifier.
    static inline const std::string kUnusable = "\x01unregistered";

    void enqueue(const std::shared_ptr<Cell>& cell) {
        cell->indexPath_.reset();
        // Cells nobody can ask for again (no identifier, or a class that does
        // not match its registration) are dropped rather than queued.
        if (cell->reuseIdentifier().empty() || cell->reuseIdentifier() == kUnusable) {
            cell->removeFromSuperview();
            return;
        }
        cell->setHidden(true);
        queues_[cell->reuseIdentifier()].push_back(cell);
    }

    std::unordered_map<std::string, Registration> registrations_;
    std::unordered_map<std::string, std::vector<std::shared_ptr<Cell>>> queues_;
    std::map<IndexPath, std::shared_ptr<Cell>> visible_;
    std::uint64_t generation_ = 0;
};

} // namespace morvane::ui::detail
