// What a disk may hold after the power has failed, by what had been asked of it before. Names are
// made, moved and removed in folders; bytes are written into files; both last for certain only once
// they have been synchronised.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/proofs/Tree.h"

namespace kelvane::proofs {

class Disk {
 public:
  // All that is in the tree lasts already.
  explicit Disk(const Tree& tree);

  // --- what is asked of it; paths are relative, "" is the top
  void makeFile(const std::string& path);
  void makeFolder(const std::string& path);
  void makeLink(const std::string& path, const std::string& target);
  void write(const std::string& path, std::size_t offset, const std::string& bytes);
  void resize(const std::string& path, std::size_t size);
  void rename(const std::string& from, const std::string& to);
  void remove(const std::string& path);
  // A file's bytes, or a folder's names.
  void synchronise(const std::string& path);
  void synchroniseAll();

  bool exists(const std::string& path) const { return find(path) >= 0; }
  // What everybody sees; permissions are not known.
  Tree now() const;

  // Every state that the disk may be in when the power fails now. Most disks have names come and go
  // in the order in which that was asked for, and after each of them may come the end: such a state
  // is in order. Others have any of them without any other.
  struct State {
    Tree tree;
    bool isInOrder;
  };
  using Look = std::function<void(const State& state)>;
  void afterPowerLoss(const Look& look) const;

 private:
  using Node = int;
  struct Content {
    Entry::Kind kind;
    std::string sure;  // what lasts of a file's bytes; where a link leads
    std::string now;
    std::size_t kept = sure.size();  // so much of what lasts has not been cut off since
  };
  // A name in a folder that comes or goes; a rename is one change.
  struct Change {
    Node node;
    Node fromFolder;  // -1 where it comes from nowhere
    std::string fromName;
    Node toFolder;  // -1 where it goes
    std::string toName;
    bool lasts = false;
  };
  using Names = std::map<Node, std::map<std::string, Node>>;
  // How the bytes that are not sure may have come onto the disk.
  enum class Bytes { none, cut, zeros, head, tail, all };

  struct Place {
    Node folder;
    std::string name;
  };
  Node find(const std::string& path) const;
  Place placeOf(const std::string& path) const;
  void change(Change change);
  void make(const std::string& path, Content content);
  // Forgets the changes that last and have nothing unsure before them.
  void settle();
  static void apply(const Change& change, Names& names);
  Tree treeOf(const Names& names, Bytes bytes) const;
  void addTo(Tree& tree, const Names& names, Node folder, const std::string& prefix,
             Bytes bytes) const;
  static void makeSure(Content& content);
  static std::string bytesOf(const Content& content, Bytes bytes);
  struct Choice {
    std::vector<bool> isThere;  // by change
    bool isInOrder;
  };
  // Which of the changes that are not sure are on the disk.
  std::vector<Choice> choices() const;
  // Whether nothing lasts that was asked for after this change.
  bool isLastOfAll(std::size_t change) const;

  std::vector<Content> contents_;  // by node; 0 is the top
  Names sure_;                     // without any of the changes
  Names now_;
  std::vector<Change> changes_;
};

}  // namespace kelvane::proofs
