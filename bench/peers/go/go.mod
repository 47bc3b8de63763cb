module peers

go 1.19
