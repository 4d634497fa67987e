# A tour of a Korva session: the object pool, parameters, a spatial graph
# built from the console, and how file errors reach a script.
# Run: scripts/run   (or: korva examples/demo.tcl)

proc section {title} {
    puts "\n== $title"
}

section "Objects in the pool"
# Every object is a Tcl command named by its label; clashing labels get numbers.
set notes [create KxData notes.txt]
set more [create KxData notes.txt]
puts "created $notes and $more; the pool holds: [all]"
puts "$more is a [$more getTypeName]"

section "Parameters"
# Parameter bundles have a text form; data objects take it from the console.
$notes setParameters {
    "Experiment" string "retina, mouse 3"
    "VoxelSize" float 0.2 0.2 0.5
    "Channels" {
        "GFP" { "color" float 0 1 0 }
        "DAPI" { "color" float 0 0 1 }
    }
}
puts -nonewline [$notes parameters]
puts "modified: [$notes isModified]"

section "A spatial graph"
# A small Y: a trunk from the root that branches into two.
set g [create KxSpatialGraph tree]
set root [$g addVertex 0 0 0]
set fork [$g addVertex 0 10 0]
set left [$g addVertex -5 15 0]
set right [$g addVertex 5 15 1]
$g addEdge $root $fork 0 5 0
$g addEdge $fork $left -2 12 0
$g addEdge $fork $right 2 12 0.5 4 14 1
puts -nonewline [$g info]
$g setTransform 1 0 0 0  0 1 0 0  0 0 1 0  100 0 0 1
puts "bounding box: [$g getBoundingBox] (transformed: [$g getBoundingBox transformed])"

section "Saving and loading"
# Files go through the format registry: save names a format, load finds the
# reader from the file's content or extension. Failed saves keep the old file.
set tmp [expr {[info exists env(TMPDIR)] ? $env(TMPDIR) : "/tmp"}]
set dir [file join $tmp korva-demo-[pid]]
file mkdir $dir
foreach format {KorvaMesh KorvaMeshASCII} {
    set file [file join $dir tree-$format.kxm]
    save $format $g $file
    set copy [load $file]
    set same [expr {[$copy getBoundingBox] eq [$g getBoundingBox] ? "the same" : "another"}]
    puts "$format: [file size $file] bytes, loaded back as $copy with $same bounding box"
    remove $copy
}
file delete -force $dir

section "Loading files"
# A failed load prints an "Error: " line and raises a Tcl error a script can catch.
foreach file [list no-such-file.swc [info script]] {
    if {[catch {load $file} message]} {
        puts "load [file tail $file] failed: $message"
    } else {
        puts "load [file tail $file] gave: $message"
    }
}

section "Cleaning up"
remove $more
puts "after removing $more: [all]"
remove -all
puts "after remove -all: [llength [all]] objects"
