# A vessel-like network: a 6 x 6 mesh of wiggling vessels (so it has loops),
# thick on the left (radius 4) and thin on the right (radius 1), every vessel
# a polyline of 7 points with a point attribute "thickness". Drawn by
#   korva render --color thickness examples/vessel_network.tcl vessels.png
# as tubes coloured from blue (thin) to red (thick). As a plain script it only
# builds the graph and prints its summary.

set g [create KxSpatialGraph vessels]
set n 6
set spacing 20.0
proc jitter {i j k} { return [expr {3.0 * sin(12.9898 * $i + 78.233 * $j + 37.719 * $k)}] }
proc radiusAt {x} { return [expr {4.0 - 3.0 * $x / 100.0}] }

for {set j 0} {$j < $n} {incr j} {
    for {set i 0} {$i < $n} {incr i} {
        set x [expr {$i * $spacing + [jitter $i $j 1]}]
        set y [expr {$j * $spacing + [jitter $i $j 2]}]
        set z [jitter $i $j 3]
        set vertex($i,$j) [$g addVertex $x $y $z]
        set at($i,$j) [list $x $y $z]
    }
}

$g addAttribute thickness POINT float
set numPoints 7
# A vessel from vertex (i, j) to (k, l): inner points bulge sideways along a sine.
proc addVessel {g from to a b} {
    global numPoints
    lassign $a x0 y0 z0
    lassign $b x1 y1 z1
    set inner {}
    for {set p 1} {$p < $numPoints - 1} {incr p} {
        set t [expr {double($p) / ($numPoints - 1)}]
        set bulge [expr {2.5 * sin(3.14159265 * $t) * sin($x0 + $y1)}]
        lappend inner [expr {$x0 + $t * ($x1 - $x0) - $bulge * ($y1 - $y0) / 20.0}]
        lappend inner [expr {$y0 + $t * ($y1 - $y0) + $bulge * ($x1 - $x0) / 20.0}]
        lappend inner [expr {$z0 + $t * ($z1 - $z0) + $bulge}]
    }
    set edge [$g addEdge $from $to {*}$inner]
    for {set p 0} {$p < $numPoints} {incr p} {
        set t [expr {double($p) / ($numPoints - 1)}]
        $g setValue POINT thickness $edge $p [radiusAt [expr {$x0 + $t * ($x1 - $x0)}]]
    }
}

for {set j 0} {$j < $n} {incr j} {
    for {set i 0} {$i < $n} {incr i} {
        if {$i + 1 < $n} {
            addVessel $g $vertex($i,$j) $vertex([expr {$i + 1}],$j) $at($i,$j) $at([expr {$i + 1}],$j)
        }
        if {$j + 1 < $n} {
            addVessel $g $vertex($i,$j) $vertex($i,[expr {$j + 1}]) $at($i,$j) $at($i,[expr {$j + 1}])
        }
    }
}
puts [$g info]
