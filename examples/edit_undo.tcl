# Grows a small tree by undoable edits, deletes a subtree, takes the deletion
# back with undo, saves the tree and checks the saved file.
# Run: korva examples/edit_undo.tcl
# The edit commands are described in docs/spatialgraph-commands.md.

proc check {condition message} {
    if {![uplevel 1 [list expr $condition]]} {
        error "edit_undo: $message"
    }
}

set g [create KxSpatialGraph tree]
$g addVertex 0 0 0

# Each edit adds a vertex and traces an edge to it from the selected vertex;
# radii go into the point attribute "thickness".
$g edit addVertexAndConnect 10 0 0 -vertices 0 -polyline {0 0 0 5 0.5 0 10 0 0} -radii {2 1.5 1.2}
$g edit addVertexAndConnect 15 5 0 -vertices 1
set fork [lindex [$g edit addVertexAndConnect 15 -5 0 -vertices 1] 1]
$g edit addVertexAndConnect 20 -8 0 -vertices $fork
$g edit addVertexAndConnect 20 -2 0 -vertices $fork
# What a graph looks like from outside: its counts and its bounding box.
proc state {graph} {
    return [list [$graph info] [$graph getBoundingBox]]
}
set whole [state $g]
puts [$g info]

# The subtree below the fork: its three vertices and the edges that reach them.
puts "delete: [$g edit delete -vertices [list $fork 4 5] -edges {2 3 4}]"
puts [$g info]
check {[state $g] ne $whole} "the delete changed nothing"
puts "undo: [undo]"
check {[state $g] eq $whole} "undo did not restore the tree"
check {[$g isConsistent]} "the tree is inconsistent after undo"

set dir [file join [expr {[info exists ::env(TMPDIR)] ? $::env(TMPDIR) : "/tmp"}] edit-undo-example-[pid]]
file mkdir $dir
set path [file join $dir tree.kxm]
save KorvaMesh $g $path
set loaded [load $path]
check {[state $loaded] eq $whole} "the saved tree differs"
puts "saved and reloaded $path"
file delete -force $dir
