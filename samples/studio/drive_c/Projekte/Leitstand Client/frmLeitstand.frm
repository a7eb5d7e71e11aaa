VERSION 5.00
Object = "{7A1D4C20-52B6-11D3-9C01-0050DA4E7B10}#4.0#0"; "TXTrend.ocx"
Begin VB.Form frmLeitstand 
   Caption         =   "Leitstand"
   ClientHeight    =   7200
   ClientWidth     =   9600
   WindowState     =   2  'Maximiert
End
Attribute VB_Name = "frmLeitstand"
Option Explicit
